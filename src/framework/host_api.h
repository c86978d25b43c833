// One wrapper per host service. Each resolves its service by name on first use, caches the
// address, and answers the service's "missing" result when the host lacks it.
#pragma once

#include <cstdint>

#include "sdk/host_types.h"

namespace zel::host {

REALstring REALBuildString(const char* bytes, int length) noexcept;
REALstring REALBuildStringWithEncoding(const char* bytes, int length,
                                       std::uint32_t encoding) noexcept;
REALstring REALConvertString(REALstring s, std::uint32_t encoding) noexcept;
std::uint32_t REALGetStringEncoding(REALstring s) noexcept;
void REALSetStringEncoding(REALstring s, std::uint32_t encoding) noexcept;
bool PluginGetStringData(REALstring s, std::uint32_t encoding, REALstringData* data) noexcept;
void PluginDisposeStringData(REALstringData* data) noexcept;
// The stored bytes; when `length` is given, the byte length from the host's "LenB" (left
// unwritten when that method cannot be loaded). Nil gives null and no length.
const char* StringGetCString(REALstring s, RBInteger* length = nullptr) noexcept;
void REALLockString(REALstring s) noexcept;
void REALUnlockString(REALstring s) noexcept;
std::int32_t RuntimeStringCompare(REALstring a, REALstring b) noexcept;
void REALLockObject(REALobject o) noexcept;
void REALUnlockObject(REALobject o) noexcept;
REALobject PluginNewInstance(const char* className) noexcept;
void* REALLoadObjectMethod(REALobject o, const char* declaration) noexcept;
void* REALLoadGlobalMethod(const char* module, const char* declaration) noexcept;
bool REALGetPropValueBool(REALobject o, const char* name, RBBoolean* value) noexcept;
bool REALGetPropValueColor(REALobject o, const char* name, RBColor* value) noexcept;
bool REALGetPropValueInteger(REALobject o, const char* name, RBInteger* value) noexcept;
bool REALGetPropValueString(REALobject o, const char* name, REALstring* value) noexcept;
bool REALSetPropValueBoolean(REALobject o, const char* name, RBBoolean value) noexcept;
bool REALSetPropValueInteger(REALobject o, const char* name, RBInteger value) noexcept;
bool REALSetPropValueString(REALobject o, const char* name, REALstring value) noexcept;
bool REALSetPropValueUInt32(REALobject o, const char* name, std::uint32_t value) noexcept;
void RuntimeRaiseException(REALobject exception) noexcept;
REALarray RuntimeArrayCreateSingleDimBoundedArray(std::int32_t elementType,
                                                  RBInteger upperBound) noexcept;
RBInteger RuntimeUBound(REALarray a) noexcept;
// Resolves the array's insert procedure and, when there is one, inserts `s` at `index`.
void PluginStringArrayInsert(REALarray a, RBInteger index, REALstring s) noexcept;
REALobject PluginCallFunctionWithExceptionHandler(service::ExceptionHandledFunction work,
                                                  void* context) noexcept;
void REALYieldToRB() noexcept;
bool REALinRuntime() noexcept;
void PluginRegisterClassExtension(REALclassDefinition* definition) noexcept;
void PluginRegisterMethod(REALmethodDefinition* definition) noexcept;
void PluginRegisterModule(REALmoduleDefinition* definition) noexcept;

}  // namespace zel::host
