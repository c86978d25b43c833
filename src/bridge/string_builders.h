// New host strings from native bytes. Every result carries one reference owned by the caller;
// null stands for the host's empty string.
#pragma once

#include <cstdint>

#include "sdk/host_types.h"

namespace zel {

// A zero-terminated 8-bit text.
REALstring CString2RB(const char* text, std::uint32_t encoding) noexcept;

// A counted buffer. Null for no data or a count of 0 or less. Single-byte text that is all ASCII
// comes back tagged ASCII; UTF-16 and UTF-32 input comes back as UTF-8.
REALstring REALBuildUnicodeString(const void* data, RBInteger byteCount,
                                  std::uint32_t encoding) noexcept;
REALstring REALBuildUnicodeStringUTF16(const void* data, RBInteger byteCount) noexcept;
// A trailing partial code point is ignored.
REALstring REALBuildUnicodeStringUTF32(const void* data, RBInteger byteCount) noexcept;

// UTF-16 units up to their terminating zero.
REALstring REALBuildUnicodeStringUTF16Terminated(const char16_t* units) noexcept;

}  // namespace zel
