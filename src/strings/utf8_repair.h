// Repairing text into valid UTF-8, and finding the readable strings in raw data.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::strings {

// Copies every byte below 0x80 and every well-formed sequence of 2 to 4 bytes; each other
// byte becomes the placeholder (read up to its first NUL), so a broken sequence gets one
// placeholder per byte.
std::string repairUtf8(std::span<const std::uint8_t> data, std::string_view placeholder);

// The runs of tab, LF, CR, printable ASCII and well-formed multi-byte UTF-8 that hold more
// than blanks and are longer than minLength bytes (a negative minLength counts as 0), in
// order. The views point into data.
std::vector<std::string_view> readableStrings(std::span<const std::uint8_t> data,
                                              std::int64_t minLength);

}  // namespace zel::strings
