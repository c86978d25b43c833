// One wrapper per host service. Each resolves its service by name on first use, caches the
// address, and answers the service's "missing" result when the host lacks it.
#pragma once

#include <cstdint>

#include "sdk/host_services.h"
#include "sdk/host_types.h"

namespace zel::host {

#define ZEL_WRAPPER_DECLARATION_Value(Name, Result, Parameters) Result Name Parameters noexcept;
#define ZEL_WRAPPER_DECLARATION_Success(Name, Result, Parameters) bool Name Parameters noexcept;
#define ZEL_WRAPPER_DECLARATION_Action(Name, Result, Parameters) void Name Parameters noexcept;
#define ZEL_WRAPPER_DECLARATION_Own(Name, Result, Parameters)
#define ZEL_WRAPPER_DECLARATION_Startup(Name, Result, Parameters)
#define ZEL_WRAPPER_DECLARATION(Shape, Name, Result, Parameters, Arguments) \
  ZEL_WRAPPER_DECLARATION_##Shape(Name, Result, Parameters)
ZEL_HOST_SERVICES(ZEL_WRAPPER_DECLARATION)
#undef ZEL_WRAPPER_DECLARATION
#undef ZEL_WRAPPER_DECLARATION_Value
#undef ZEL_WRAPPER_DECLARATION_Success
#undef ZEL_WRAPPER_DECLARATION_Action
#undef ZEL_WRAPPER_DECLARATION_Own
#undef ZEL_WRAPPER_DECLARATION_Startup

// The stored bytes; when `length` is given, the byte length from the host's "LenB" (left
// unwritten when that method cannot be loaded). Nil gives null and no length.
const char* StringGetCString(REALstring s, RBInteger* length = nullptr) noexcept;
std::int32_t RuntimeStringCompare(REALstring a, REALstring b) noexcept;
// Resolves the array's insert procedure and, when there is one, inserts `s` at `index`.
void PluginStringArrayInsert(REALarray a, RBInteger index, REALstring s) noexcept;

}  // namespace zel::host
