// The services of the host function table, as the plug-in resolves them by name.
#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <type_traits>
#include <unordered_set>

#include "encodings.h"
#include "host_strings.h"
#include "objects.h"
#include "registration.h"
#include "service_table.h"

namespace zelhost {
namespace detail {
namespace {

constexpr std::uint32_t kStringDataMagic = 0x53444154;
constexpr std::size_t kStringDataSlack = 4;

bool failing(Service service) {
  return enterFailing(service);
}

StringHeader* stringArgument(REALstring s, const char* service) {
  return s == nullptr ? nullptr : liveString(s, service);
}

// ---- strings

REALstring buildString(const char* bytes, int length, std::uint32_t encoding) {
  if (length < 0 || (bytes == nullptr && length > 0) || !allocationAllowed()) return nullptr;
  return createString({bytes, static_cast<std::size_t>(length)}, encoding);
}

REALstring REALBuildString(const char* bytes, int length) {
  if (failing(Service::REALBuildString)) return nullptr;
  return buildString(bytes, length, encoding::kNone);
}

REALstring REALBuildStringWithEncoding(const char* bytes, int length, std::uint32_t encoding) {
  if (failing(Service::REALBuildStringWithEncoding)) return nullptr;
  return buildString(bytes, length, encoding);
}

REALstring REALConvertString(REALstring s, std::uint32_t encoding) {
  if (failing(Service::REALConvertString)) return nullptr;
  const StringHeader* source = stringArgument(s, "REALConvertString");
  if (source == nullptr) return nullptr;
  const auto converted = convertBytes(source->view(), source->encoding, encoding);
  if (!converted || !allocationAllowed()) return nullptr;
  return createString(*converted, encoding);
}

std::uint32_t REALGetStringEncoding(REALstring s) {
  if (failing(Service::REALGetStringEncoding)) return 0;
  const StringHeader* string = stringArgument(s, "REALGetStringEncoding");
  return string ? string->encoding : encoding::kNone;
}

void REALSetStringEncoding(REALstring s, std::uint32_t encoding) {
  if (failing(Service::REALSetStringEncoding)) return;
  if (StringHeader* string = stringArgument(s, "REALSetStringEncoding"))
    string->encoding = encoding;
}

std::mutex stringDataMutex;
std::unordered_set<const void*>& outstandingStringData() {
  static std::unordered_set<const void*> buffers;
  return buffers;
}

RBBoolean PluginGetStringData(REALstring s, std::uint32_t encoding, REALstringData* record) {
  if (failing(Service::PluginGetStringData) || record == nullptr) return 0;
  std::optional<std::string> converted = std::string();
  if (s != nullptr) {
    const StringHeader* source = liveString(s, "PluginGetStringData");
    if (source == nullptr) return 0;
    converted = convertBytes(source->view(), source->encoding, encoding);
  }
  if (!converted) return 0;
  auto* buffer = static_cast<char*>(std::calloc(converted->size() + kStringDataSlack, 1));
  if (buffer == nullptr) return 0;
  std::memcpy(buffer, converted->data(), converted->size());
  // An unterminated buffer still has readable slack, as a real host's would, but not zeros.
  if (!stringDataTerminated()) std::memset(buffer + converted->size(), 0x5A, kStringDataSlack);
  {
    const std::lock_guard lock(stringDataMutex);
    outstandingStringData().insert(buffer);
  }
  *record = {buffer, converted->size(), encoding, buffer, kStringDataMagic};
  return 1;
}

void PluginDisposeStringData(REALstringData* record) {
  if (failing(Service::PluginDisposeStringData)) return;
  if (record == nullptr) {
    reportProtocolError("PluginDisposeStringData: null record");
    return;
  }
  {
    const std::lock_guard lock(stringDataMutex);
    if (record->hostPrivate2 != kStringDataMagic ||
        outstandingStringData().erase(record->hostPrivate1) == 0) {
      reportProtocolError("PluginDisposeStringData: a record not filled or disposed twice");
      return;
    }
  }
  std::free(const_cast<void*>(record->hostPrivate1));
}

void* StringGetCString(REALstring s) {
  if (failing(Service::StringGetCString)) return nullptr;
  const StringHeader* string = stringArgument(s, "StringGetCString");
  return string ? string->bytes : nullptr;
}

void REALLockString(REALstring s) {
  if (!failing(Service::REALLockString) && s != nullptr) retainString(s, "REALLockString");
}

void REALUnlockString(REALstring s) {
  if (!failing(Service::REALUnlockString) && s != nullptr) releaseString(s, "REALUnlockString");
}

// The host compares text, ignoring the case of ASCII letters.
RBInteger RuntimeStringCompare(REALstring a, REALstring b) {
  if (failing(Service::RuntimeStringCompare)) return 0;
  const auto text = [](REALstring s) {
    const StringHeader* string = stringArgument(s, "RuntimeStringCompare");
    if (string == nullptr) return std::string();
    return convertBytes(string->view(), string->encoding, encoding::kUTF8).value_or("");
  };
  const std::string left = text(a);
  const std::string right = text(b);
  const int order = strncasecmp(left.c_str(), right.c_str(), std::max(left.size(), right.size()));
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

// ---- objects

void REALLockObject(REALobject o) {
  if (!failing(Service::REALLockObject) && o != nullptr) retainObject(o, "REALLockObject");
}

void REALUnlockObject(REALobject o) {
  if (!failing(Service::REALUnlockObject) && o != nullptr) releaseObject(o, "REALUnlockObject");
}

REALobject PluginNewInstance(const char* name) {
  if (failing(Service::PluginNewInstance) || name == nullptr) return nullptr;
  const ClassInfo* classInfo = findClass(name);
  if (classInfo == nullptr || !allocationAllowed()) return nullptr;
  return createObject(*classInfo);
}

void* REALLoadObjectMethod(REALobject o, const char* declaration) {
  if (failing(Service::REALLoadObjectMethod) || o == nullptr || declaration == nullptr) {
    return nullptr;
  }
  return findObjectMethod(o, declaration);
}

void* REALLoadGlobalMethod(const char*, const char* declaration) {
  if (failing(Service::REALLoadGlobalMethod) || declaration == nullptr) return nullptr;
  return findGlobalMethod(declaration);
}

template <class Value>
RBBoolean getProperty(Service service, REALobject o, const char* name, PropertyType type,
                      Value* out) {
  if (failing(service) || o == nullptr || name == nullptr || out == nullptr) return 0;
  PropertyValue value;
  if (!readProperty(o, name, type, value)) return 0;
  if constexpr (std::is_same_v<Value, REALstring>) {
    *out = value.string;
  } else {
    *out = static_cast<Value>(value.number);
  }
  return 1;
}

RBBoolean setProperty(Service service, REALobject o, const char* name, PropertyType type,
                      const PropertyValue& value) {
  if (failing(service) || o == nullptr || name == nullptr) return 0;
  return writeProperty(o, name, type, value) ? 1 : 0;
}

RBBoolean REALGetPropValueBool(REALobject o, const char* name, RBBoolean* value) {
  return getProperty(Service::REALGetPropValueBool, o, name, PropertyType::Boolean, value);
}

RBBoolean REALGetPropValueColor(REALobject o, const char* name, RBColor* value) {
  return getProperty(Service::REALGetPropValueColor, o, name, PropertyType::Color, value);
}

RBBoolean REALGetPropValueInteger(REALobject o, const char* name, RBInteger* value) {
  return getProperty(Service::REALGetPropValueInteger, o, name, PropertyType::Integer, value);
}

RBInteger REALGetPropValueString(REALobject o, const char* name, REALstring* value) {
  return getProperty(Service::REALGetPropValueString, o, name, PropertyType::String, value);
}

RBBoolean REALSetPropValueBoolean(REALobject o, const char* name, RBBoolean value) {
  return setProperty(Service::REALSetPropValueBoolean, o, name, PropertyType::Boolean,
                     {value, nullptr});
}

RBBoolean REALSetPropValueInteger(REALobject o, const char* name, RBInteger value) {
  return setProperty(Service::REALSetPropValueInteger, o, name, PropertyType::Integer,
                     {value, nullptr});
}

RBBoolean REALSetPropValueString(REALobject o, const char* name, REALstring value) {
  if (value != nullptr && liveString(value, "REALSetPropValueString") == nullptr) return 0;
  return setProperty(Service::REALSetPropValueString, o, name, PropertyType::String, {0, value});
}

RBBoolean REALSetPropValueUInt32(REALobject o, const char* name, std::uint32_t value) {
  return setProperty(Service::REALSetPropValueUInt32, o, name, PropertyType::Color,
                     {static_cast<RBInteger>(value), nullptr});
}

// ---- exceptions, arrays, runtime

void RuntimeRaiseException(REALobject exception) {
  if (!failing(Service::RuntimeRaiseException) && exception != nullptr) raiseException(exception);
}

REALarray RuntimeArrayCreateSingleDimBoundedArray(std::int32_t elementType, RBInteger upperBound) {
  if (failing(Service::RuntimeArrayCreateSingleDimBoundedArray)) return nullptr;
  if (elementType != kArrayOfString || upperBound < -1 || !allocationAllowed()) return nullptr;
  REALobject array = createObject(*findClass(kStringArrayClass));
  if (auto* items = objectData<StringArrayData>(array, "array")) {
    items->items.resize(static_cast<std::size_t>(upperBound + 1));
  }
  return reinterpret_cast<REALarray>(array);
}

StringArrayData* arrayArgument(REALarray a, const char* service) {
  if (a == nullptr) {
    reportProtocolError(std::string(service) + ": nil array");
    return nullptr;
  }
  auto* items = objectData<StringArrayData>(reinterpret_cast<REALobject>(a), service);
  if (items == nullptr) reportProtocolError(std::string(service) + ": not a string array");
  return items;
}

RBInteger RuntimeUBound(REALarray a) {
  if (failing(Service::RuntimeUBound)) return 0;
  const StringArrayData* array = arrayArgument(a, "RuntimeUBound");
  return array ? static_cast<RBInteger>(array->items.size()) - 1 : 0;
}

void insertString(REALarray a, RBInteger index, REALstring s) {
  StringArrayData* array = arrayArgument(a, "string array insert");
  if (array == nullptr) return;
  if (index < 0 || index > static_cast<RBInteger>(array->items.size())) {
    reportProtocolError("string array insert: index " + std::to_string(index) + " out of range");
    return;
  }
  if (s != nullptr) retainString(s, "string array insert");
  array->items.insert(array->items.begin() + index, s);
}

service::StringArrayInsert PluginStringArrayInsertProc(REALarray a) {
  if (failing(Service::PluginStringArrayInsertProc) || a == nullptr) return nullptr;
  return &insertString;
}

REALobject PluginCallFunctionWithExceptionHandler(service::ExceptionHandledFunction function,
                                                  void* context) {
  if (failing(Service::PluginCallFunctionWithExceptionHandler) || function == nullptr) {
    return nullptr;
  }
  return runWithExceptionHandler(function, context);
}

void REALYieldToRB() {
  failing(Service::REALYieldToRB);
}

RBBoolean REALinRuntime() {
  if (failing(Service::REALinRuntime)) return 0;
  return config().inRuntime ? 1 : 0;
}

void PluginRegisterClassExtension(REALclassDefinition* definition) {
  if (!failing(Service::PluginRegisterClassExtension)) registerClassExtension(definition);
}

void PluginRegisterMethod(REALmethodDefinition* definition) {
  if (!failing(Service::PluginRegisterMethod)) registerMethod(definition);
}

void PluginRegisterModule(REALmoduleDefinition* definition) {
  if (!failing(Service::PluginRegisterModule)) registerModule(definition);
}

double REALGetRBVersion() {
  if (failing(Service::REALGetRBVersion)) return 0.0;
  return config().version;
}

void RegisterPluginVersion(int version) {
  if (!failing(Service::RegisterPluginVersion)) registerPluginVersion(version);
}

template <class Function>
void* address(Function* function) {
  return reinterpret_cast<void*>(function);
}

// In the order of the Service enumeration.
void* serviceAddress(Service service) {
#define ZEL_SERVICE_ADDRESS(Shape, Name, Result, Parameters, Arguments) address(&Name),
  static const auto kAddresses = std::to_array<void*>({ZEL_HOST_SERVICES(ZEL_SERVICE_ADDRESS)});
#undef ZEL_SERVICE_ADDRESS
  static_assert(std::tuple_size_v<decltype(kAddresses)> == kServiceCount);
  const auto index = static_cast<std::size_t>(service);
  return index < kAddresses.size() ? kAddresses[index] : nullptr;
}

}  // namespace

int outstandingStringDataCount() {
  const std::lock_guard lock(stringDataMutex);
  return static_cast<int>(outstandingStringData().size());
}

}  // namespace detail

void* resolve(const char* name) {
  if (name == nullptr) return nullptr;
  const auto service = detail::serviceNamed(name);
  if (!service) {
    detail::countUnknownLookup(name);
    return nullptr;
  }
  return detail::lookUp(*service) ? detail::serviceAddress(*service) : nullptr;
}

LiveCounts liveCounts() {
  return {detail::liveStringCount(), detail::liveObjectCount(),
          detail::outstandingStringDataCount()};
}

}  // namespace zelhost
