// Every service of the host's function table, listed once: the plug-in's wrappers and the stand-in
// host's table are both expanded from this list.
//
// Each row is X(Shape, Name, Result, Parameters, Arguments):
//   Value    the wrapper returns the service's result, or the result type's zero when it is
//   missing; Success  the service answers success in its low byte; the wrapper returns a bool,
//   false when
//            the service is missing;
//   Action   the wrapper calls the service when there is one and returns nothing;
//   Own      the wrapper is written by hand (it does more than forward);
//   Startup  resolved once by the entry point, before any wrapper may run; no wrapper.
#pragma once

#include <cstdint>

#include "sdk/host_types.h"

// Services every host offers.
#define ZEL_SERVICES_OF_EVERY_HOST(X)                                                              \
  X(Value, REALBuildString, REALstring, (const char* bytes, int length), (bytes, length))          \
  X(Value, REALConvertString, REALstring, (REALstring s, std::uint32_t encoding), (s, encoding))   \
  X(Value, REALGetStringEncoding, std::uint32_t, (REALstring s), (s))                              \
  X(Action, REALSetStringEncoding, void, (REALstring s, std::uint32_t encoding), (s, encoding))    \
  X(Success, PluginGetStringData, RBBoolean,                                                       \
    (REALstring s, std::uint32_t encoding, REALstringData * data), (s, encoding, data))            \
  X(Action, PluginDisposeStringData, void, (REALstringData * data), (data))                        \
  X(Own, StringGetCString, void*, (REALstring s), (s))                                             \
  X(Action, REALLockString, void, (REALstring s), (s))                                             \
  X(Action, REALUnlockString, void, (REALstring s), (s))                                           \
  X(Own, RuntimeStringCompare, RBInteger, (REALstring a, REALstring b), (a, b))                    \
  X(Action, REALLockObject, void, (REALobject o), (o))                                             \
  X(Action, REALUnlockObject, void, (REALobject o), (o))                                           \
  X(Value, PluginNewInstance, REALobject, (const char* className), (className))                    \
  X(Value, REALLoadObjectMethod, void*, (REALobject o, const char* declaration), (o, declaration)) \
  X(Value, REALLoadGlobalMethod, void*, (const char* module, const char* declaration),             \
    (module, declaration))                                                                         \
  X(Success, REALGetPropValueBool, RBBoolean, (REALobject o, const char* name, RBBoolean* value),  \
    (o, name, value))                                                                              \
  X(Success, REALGetPropValueColor, RBBoolean, (REALobject o, const char* name, RBColor* value),   \
    (o, name, value))                                                                              \
  X(Success, REALGetPropValueInteger, RBBoolean,                                                   \
    (REALobject o, const char* name, RBInteger* value), (o, name, value))                          \
  X(Success, REALGetPropValueString, RBInteger,                                                    \
    (REALobject o, const char* name, REALstring* value), (o, name, value))                         \
  X(Success, REALSetPropValueBoolean, RBBoolean,                                                   \
    (REALobject o, const char* name, RBBoolean value), (o, name, value))                           \
  X(Success, REALSetPropValueInteger, RBBoolean,                                                   \
    (REALobject o, const char* name, RBInteger value), (o, name, value))                           \
  X(Success, REALSetPropValueString, RBBoolean,                                                    \
    (REALobject o, const char* name, REALstring value), (o, name, value))                          \
  X(Success, REALSetPropValueUInt32, RBBoolean,                                                    \
    (REALobject o, const char* name, std::uint32_t value), (o, name, value))                       \
  X(Action, RuntimeRaiseException, void, (REALobject exception), (exception))                      \
  X(Value, RuntimeArrayCreateSingleDimBoundedArray, REALarray,                                     \
    (std::int32_t elementType, RBInteger upperBound), (elementType, upperBound))                   \
  X(Value, RuntimeUBound, RBInteger, (REALarray a), (a))                                           \
  X(Own, PluginStringArrayInsertProc, service::StringArrayInsert, (REALarray a), (a))              \
  X(Value, PluginCallFunctionWithExceptionHandler, REALobject,                                     \
    (service::ExceptionHandledFunction work, void* context), (work, context))                      \
  X(Action, REALYieldToRB, void, (), ())                                                           \
  X(Success, REALinRuntime, RBBoolean, (), ())                                                     \
  X(Action, PluginRegisterClassExtension, void, (REALclassDefinition * definition), (definition))  \
  X(Action, PluginRegisterMethod, void, (REALmethodDefinition * definition), (definition))         \
  X(Startup, REALGetRBVersion, double, (), ())                                                     \
  X(Startup, RegisterPluginVersion, void, (int version), (version))

// Used from host version kVersionWithEncodedBuild on.
#define ZEL_SERVICES_FROM_ENCODED_BUILD(X)          \
  X(Value, REALBuildStringWithEncoding, REALstring, \
    (const char* bytes, int length, std::uint32_t encoding), (bytes, length, encoding))

// Used from host version kVersionWithModules on.
#define ZEL_SERVICES_FROM_MODULES(X) \
  X(Action, PluginRegisterModule, void, (REALmoduleDefinition * definition), (definition))

#define ZEL_HOST_SERVICES(X)         \
  ZEL_SERVICES_OF_EVERY_HOST(X)      \
  ZEL_SERVICES_FROM_ENCODED_BUILD(X) \
  ZEL_SERVICES_FROM_MODULES(X)

// Service signatures, by the host's names.
namespace service {
#define ZEL_SERVICE_SIGNATURE(Shape, Name, Result, Parameters, Arguments) \
  using Name = Result(*) Parameters;
ZEL_HOST_SERVICES(ZEL_SERVICE_SIGNATURE)
#undef ZEL_SERVICE_SIGNATURE
}  // namespace service
