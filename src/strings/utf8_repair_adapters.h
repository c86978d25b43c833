// Registered functions over raw data that may or may not be text: the readable strings in it,
// and its repair into valid UTF-8. Each comes for a pointer with a size, a MemoryBlock and a
// string.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALarray GetStringsFromDataZEL_Ptr(void* data, RBInteger size, RBInteger minLength) noexcept;
REALarray GetStringsFromDataZEL_MemoryBlock(REALobject data, RBInteger minLength) noexcept;
REALarray GetStringsFromDataZEL_String(REALstring data, RBInteger minLength) noexcept;

REALstring CheckUTF8ZEL_Ptr(void* data, RBInteger size, REALstring placeholder) noexcept;
REALstring CheckUTF8ZEL_MemoryBlock(REALobject mem, REALstring placeholder) noexcept;
REALstring CheckUTF8ZEL_String(REALstring data, REALstring placeholder) noexcept;

}  // namespace zel::adapters
