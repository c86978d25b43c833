// Hexadecimal text and bytes over plain buffers, on the best vector path of the processor; every
// path writes the same bytes as the portable one.
#pragma once

#include <string_view>

namespace zel::text {

// Two upper-case digits per byte, high nibble first: out receives 2 * bytes.size() characters.
void encodeHex(std::string_view bytes, char* out) noexcept;

// One byte per pair of characters: out receives digits.size() / 2 bytes, each the high
// character's value * 16 plus the low character's value. A character that is not a hexadecimal
// digit counts as 0; an odd last character is not read.
void decodeHex(std::string_view digits, char* out) noexcept;

}  // namespace zel::text
