#include "strings/utf8_repair.h"

#include <algorithm>

#include "text/utf8.h"
#include "text/utf8_sequence.h"

namespace zel::strings {
namespace {

// Length of the well-formed multi-byte sequence at `at`, or 0.
std::size_t sequenceLength(std::span<const std::uint8_t> data, std::size_t at) {
  return text::multiByteSequenceLength(data.data() + at, data.size() - at);
}

constexpr bool isReadableAscii(std::uint8_t b) {
  return (b >= 32 && b <= 126) || b == '\t' || b == '\n' || b == '\r';
}

std::string_view bytesAsText(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

std::string repairUtf8(std::span<const std::uint8_t> data, std::string_view placeholder) {
  placeholder = placeholder.substr(0, placeholder.find('\0'));
  std::string out;
  out.reserve(data.size() + 4096);
  std::size_t validFrom = 0;
  std::size_t at = 0;
  while ((at += text::validUtf8Length(data.subspan(at))) < data.size()) {
    out += bytesAsText(data.subspan(validFrom, at - validFrom));
    out += placeholder;
    validFrom = ++at;
  }
  out += bytesAsText(data.subspan(validFrom));
  return out;
}

std::vector<std::string_view> readableStrings(std::span<const std::uint8_t> data,
                                              std::int64_t minLength) {
  const auto shortest = static_cast<std::uint64_t>(std::max<std::int64_t>(minLength, 0)) + 1;
  std::vector<std::string_view> strings;
  std::size_t start = 0;
  while (start < data.size()) {
    std::size_t end = start;
    bool visible = false;
    while (end < data.size()) {
      const std::uint8_t b = data[end];
      if (b < 0x80) {
        if (!isReadableAscii(b)) break;
        visible = visible || b > 32;
        ++end;
      } else if (const std::size_t length = sequenceLength(data, end)) {
        visible = true;
        end += length;
      } else {
        break;
      }
    }
    if (visible && end - start >= shortest) {
      strings.push_back(bytesAsText(data.subspan(start, end - start)));
    }
    // Past the run and the byte that ended it, accepted or not: every start inside a rejected
    // run measures a tail of it, no longer and no less blank, and the ending byte starts none.
    start = end + 1;
  }
  return strings;
}

}  // namespace zel::strings
