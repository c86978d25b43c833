#include "framework/host_api.h"

#include <type_traits>

#include "framework/lazy_address.h"
#include "framework/plugin_state.h"

namespace zel::host {
namespace {

// One service's address, looked up by name through the host's resolver.
template <class Function>
class ServiceSlot {
 public:
  explicit constexpr ServiceSlot(const char* name) noexcept : name_(name) {}

  Function get() noexcept {
    return address_.get([this]() noexcept -> Function {
      const REALresolver resolver = pluginState().resolver;
      return resolver != nullptr ? reinterpret_cast<Function>(resolver(name_)) : nullptr;
    });
  }

 private:
  const char* name_;
  LazyAddress<Function> address_;
};

// The service's cached address (null when the host lacks it), named by the service itself.
#define ZEL_SERVICE(Service)                                     \
  static constinit ServiceSlot<service::Service> slot{#Service}; \
  const auto function = slot.get()

// Only the low byte of a success answer is meaningful.
constexpr unsigned kSuccessByteMask = 0xFF;

}  // namespace

#define ZEL_WRAPPER_Value(Name, Result, Parameters, Arguments)                        \
  Result Name Parameters noexcept {                                                   \
    ZEL_SERVICE(Name);                                                                \
    return function != nullptr ? function Arguments : std::type_identity_t<Result>{}; \
  }
#define ZEL_WRAPPER_Success(Name, Result, Parameters, Arguments)                \
  bool Name Parameters noexcept {                                               \
    ZEL_SERVICE(Name);                                                          \
    return function != nullptr &&                                               \
           (static_cast<unsigned>(function Arguments) & kSuccessByteMask) != 0; \
  }
#define ZEL_WRAPPER_Action(Name, Result, Parameters, Arguments) \
  void Name Parameters noexcept {                               \
    ZEL_SERVICE(Name);                                          \
    if (function != nullptr) function Arguments;                \
  }
#define ZEL_WRAPPER_Own(Name, Result, Parameters, Arguments)
#define ZEL_WRAPPER_Startup(Name, Result, Parameters, Arguments)
#define ZEL_WRAPPER(Shape, Name, Result, Parameters, Arguments) \
  ZEL_WRAPPER_##Shape(Name, Result, Parameters, Arguments)
ZEL_HOST_SERVICES(ZEL_WRAPPER)

namespace {

service::LenB loadLenB() noexcept {
  static constinit LazyAddress<service::LenB> lenB;
  return lenB.get([]() noexcept {
    return reinterpret_cast<service::LenB>(
        REALLoadGlobalMethod(nullptr, "LenB( s as string ) as integer"));
  });
}

const char* rawCString(REALstring s) noexcept {
  ZEL_SERVICE(StringGetCString);
  return function != nullptr ? static_cast<const char*>(function(s)) : nullptr;
}
}  // namespace

const char* StringGetCString(REALstring s, RBInteger* length) noexcept {
  if (s == nullptr) return nullptr;
  if (length != nullptr) {
    if (const auto lenB = loadLenB()) *length = lenB(s);
  }
  return rawCString(s);
}

std::int32_t RuntimeStringCompare(REALstring a, REALstring b) noexcept {
  ZEL_SERVICE(RuntimeStringCompare);
  return function != nullptr ? static_cast<std::int32_t>(function(a, b)) : 0;
}

void PluginStringArrayInsert(REALarray a, RBInteger index, REALstring s) noexcept {
  ZEL_SERVICE(PluginStringArrayInsertProc);
  if (function == nullptr) return;
  if (const auto insert = function(a)) insert(a, index, s);
}

}  // namespace zel::host
