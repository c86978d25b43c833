// Finding the first byte that belongs to a set of byte values.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace zel::strings {

// members[b]: whether the byte value b belongs to the set.
using ByteSet = std::array<bool, 256>;

// Offset of the first byte of bytes that belongs to members, or bytes.size().
std::size_t findByteInSet(std::string_view bytes, const ByteSet& members) noexcept;

}  // namespace zel::strings
