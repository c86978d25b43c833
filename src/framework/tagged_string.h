// A host string from bytes already in a given encoding, built through whichever service the
// running host offers. The exception translation needs it below the string builders.
#pragma once

#include <cstdint>

#include "sdk/host_types.h"

namespace zel {

REALstring buildTaggedString(const char* bytes, int count, std::uint32_t encoding) noexcept;

}  // namespace zel
