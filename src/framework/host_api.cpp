#include "framework/host_api.h"

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

}  // namespace

REALstring REALBuildString(const char* bytes, int length) noexcept {
  ZEL_SERVICE(REALBuildString);
  return function != nullptr ? function(bytes, length) : nullptr;
}

REALstring REALBuildStringWithEncoding(const char* bytes, int length,
                                       std::uint32_t encoding) noexcept {
  ZEL_SERVICE(REALBuildStringWithEncoding);
  return function != nullptr ? function(bytes, length, encoding) : nullptr;
}

REALstring REALConvertString(REALstring s, std::uint32_t encoding) noexcept {
  ZEL_SERVICE(REALConvertString);
  return function != nullptr ? function(s, encoding) : nullptr;
}

std::uint32_t REALGetStringEncoding(REALstring s) noexcept {
  ZEL_SERVICE(REALGetStringEncoding);
  return function != nullptr ? function(s) : 0u;
}

void REALSetStringEncoding(REALstring s, std::uint32_t encoding) noexcept {
  ZEL_SERVICE(REALSetStringEncoding);
  if (function != nullptr) function(s, encoding);
}

bool PluginGetStringData(REALstring s, std::uint32_t encoding, REALstringData* data) noexcept {
  ZEL_SERVICE(PluginGetStringData);
  return function != nullptr && function(s, encoding, data) != 0;
}

void PluginDisposeStringData(REALstringData* data) noexcept {
  ZEL_SERVICE(PluginDisposeStringData);
  if (function != nullptr) function(data);
}

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

void REALLockString(REALstring s) noexcept {
  ZEL_SERVICE(REALLockString);
  if (function != nullptr) function(s);
}

void REALUnlockString(REALstring s) noexcept {
  ZEL_SERVICE(REALUnlockString);
  if (function != nullptr) function(s);
}

std::int32_t RuntimeStringCompare(REALstring a, REALstring b) noexcept {
  ZEL_SERVICE(RuntimeStringCompare);
  return function != nullptr ? static_cast<std::int32_t>(function(a, b)) : 0;
}

void REALLockObject(REALobject o) noexcept {
  ZEL_SERVICE(REALLockObject);
  if (function != nullptr) function(o);
}

void REALUnlockObject(REALobject o) noexcept {
  ZEL_SERVICE(REALUnlockObject);
  if (function != nullptr) function(o);
}

REALobject PluginNewInstance(const char* className) noexcept {
  ZEL_SERVICE(PluginNewInstance);
  return function != nullptr ? function(className) : nullptr;
}

void* REALLoadObjectMethod(REALobject o, const char* declaration) noexcept {
  ZEL_SERVICE(REALLoadObjectMethod);
  return function != nullptr ? function(o, declaration) : nullptr;
}

void* REALLoadGlobalMethod(const char* module, const char* declaration) noexcept {
  ZEL_SERVICE(REALLoadGlobalMethod);
  return function != nullptr ? function(module, declaration) : nullptr;
}

bool REALGetPropValueBool(REALobject o, const char* name, RBBoolean* value) noexcept {
  ZEL_SERVICE(REALGetPropValueBool);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALGetPropValueColor(REALobject o, const char* name, RBColor* value) noexcept {
  ZEL_SERVICE(REALGetPropValueColor);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALGetPropValueInteger(REALobject o, const char* name, RBInteger* value) noexcept {
  ZEL_SERVICE(REALGetPropValueInteger);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALGetPropValueString(REALobject o, const char* name, REALstring* value) noexcept {
  // Only the low byte of the host's answer is meaningful.
  ZEL_SERVICE(REALGetPropValueString);
  return function != nullptr && (function(o, name, value) & 0xFF) != 0;
}

bool REALSetPropValueBoolean(REALobject o, const char* name, RBBoolean value) noexcept {
  ZEL_SERVICE(REALSetPropValueBoolean);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALSetPropValueInteger(REALobject o, const char* name, RBInteger value) noexcept {
  ZEL_SERVICE(REALSetPropValueInteger);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALSetPropValueString(REALobject o, const char* name, REALstring value) noexcept {
  ZEL_SERVICE(REALSetPropValueString);
  return function != nullptr && function(o, name, value) != 0;
}

bool REALSetPropValueUInt32(REALobject o, const char* name, std::uint32_t value) noexcept {
  ZEL_SERVICE(REALSetPropValueUInt32);
  return function != nullptr && function(o, name, value) != 0;
}

void RuntimeRaiseException(REALobject exception) noexcept {
  ZEL_SERVICE(RuntimeRaiseException);
  if (function != nullptr) function(exception);
}

REALarray RuntimeArrayCreateSingleDimBoundedArray(std::int32_t elementType,
                                                  RBInteger upperBound) noexcept {
  ZEL_SERVICE(RuntimeArrayCreateSingleDimBoundedArray);
  return function != nullptr ? function(elementType, upperBound) : nullptr;
}

RBInteger RuntimeUBound(REALarray a) noexcept {
  ZEL_SERVICE(RuntimeUBound);
  return function != nullptr ? function(a) : 0;
}

void PluginStringArrayInsert(REALarray a, RBInteger index, REALstring s) noexcept {
  ZEL_SERVICE(PluginStringArrayInsertProc);
  if (function == nullptr) return;
  if (const auto insert = function(a)) insert(a, index, s);
}

REALobject PluginCallFunctionWithExceptionHandler(service::ExceptionHandledFunction work,
                                                  void* context) noexcept {
  ZEL_SERVICE(PluginCallFunctionWithExceptionHandler);
  return function != nullptr ? function(work, context) : nullptr;
}

void REALYieldToRB() noexcept {
  ZEL_SERVICE(REALYieldToRB);
  if (function != nullptr) function();
}

bool REALinRuntime() noexcept {
  ZEL_SERVICE(REALinRuntime);
  return function != nullptr && function() != 0;
}

void PluginRegisterClassExtension(REALclassDefinition* definition) noexcept {
  ZEL_SERVICE(PluginRegisterClassExtension);
  if (function != nullptr) function(definition);
}

void PluginRegisterMethod(REALmethodDefinition* definition) noexcept {
  ZEL_SERVICE(PluginRegisterMethod);
  if (function != nullptr) function(definition);
}

void PluginRegisterModule(REALmoduleDefinition* definition) noexcept {
  ZEL_SERVICE(PluginRegisterModule);
  if (function != nullptr) function(definition);
}

}  // namespace zel::host
