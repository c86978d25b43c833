// The host's services by name, with what the tests configure about each (missing, failing) and
// what they observe (lookups, calls). Shared by the resolver and the service implementations.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zelhost::detail {

enum class Service : std::size_t {
  REALBuildString,
  REALBuildStringWithEncoding,
  REALConvertString,
  REALGetStringEncoding,
  REALSetStringEncoding,
  PluginGetStringData,
  PluginDisposeStringData,
  StringGetCString,
  REALLockString,
  REALUnlockString,
  RuntimeStringCompare,
  REALLockObject,
  REALUnlockObject,
  PluginNewInstance,
  REALLoadObjectMethod,
  REALLoadGlobalMethod,
  REALGetPropValueBool,
  REALGetPropValueColor,
  REALGetPropValueInteger,
  REALGetPropValueString,
  REALSetPropValueBoolean,
  REALSetPropValueInteger,
  REALSetPropValueString,
  REALSetPropValueUInt32,
  RuntimeRaiseException,
  RuntimeArrayCreateSingleDimBoundedArray,
  RuntimeUBound,
  PluginStringArrayInsertProc,
  PluginCallFunctionWithExceptionHandler,
  REALYieldToRB,
  REALinRuntime,
  PluginRegisterClassExtension,
  PluginRegisterMethod,
  PluginRegisterModule,
  REALGetRBVersion,
  RegisterPluginVersion,
  Count
};

inline constexpr std::size_t kServiceCount = static_cast<std::size_t>(Service::Count);

inline constexpr std::array<std::string_view, kServiceCount> kServiceNames = {
    "REALBuildString",
    "REALBuildStringWithEncoding",
    "REALConvertString",
    "REALGetStringEncoding",
    "REALSetStringEncoding",
    "PluginGetStringData",
    "PluginDisposeStringData",
    "StringGetCString",
    "REALLockString",
    "REALUnlockString",
    "RuntimeStringCompare",
    "REALLockObject",
    "REALUnlockObject",
    "PluginNewInstance",
    "REALLoadObjectMethod",
    "REALLoadGlobalMethod",
    "REALGetPropValueBool",
    "REALGetPropValueColor",
    "REALGetPropValueInteger",
    "REALGetPropValueString",
    "REALSetPropValueBoolean",
    "REALSetPropValueInteger",
    "REALSetPropValueString",
    "REALSetPropValueUInt32",
    "RuntimeRaiseException",
    "RuntimeArrayCreateSingleDimBoundedArray",
    "RuntimeUBound",
    "PluginStringArrayInsertProc",
    "PluginCallFunctionWithExceptionHandler",
    "REALYieldToRB",
    "REALinRuntime",
    "PluginRegisterClassExtension",
    "PluginRegisterMethod",
    "PluginRegisterModule",
    "REALGetRBVersion",
    "RegisterPluginVersion",
};

std::optional<Service> serviceNamed(std::string_view name);

// Counts a resolver lookup; false when the service is configured missing.
bool lookUp(Service service);
// Counts a call; true when the service is configured to fail.
bool enterFailing(Service service);
void countUnknownLookup(std::string_view name);

// False when an injected allocation failure takes this creation.
bool allocationAllowed();
bool memoryBlockConstructorFails();
bool stringDataTerminated();

void reportProtocolError(std::string message);

// Back to no faults and zero counters.
void resetServiceTable();

}  // namespace zelhost::detail
