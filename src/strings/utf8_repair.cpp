#include "strings/utf8_repair.h"

#include <algorithm>
#include <array>

#include "strings/word_scan.h"

namespace zel::strings {
namespace {

// What a lead byte asks of a multi-byte sequence: its length (0 for no sequence at all) and
// the range of its second byte; later bytes are plain continuation bytes.
struct LeadByte {
  std::uint8_t length = 0;
  std::uint8_t secondLow = 0x80;
  std::uint8_t secondHigh = 0xBF;
};

constexpr auto kLeadBytes = [] {
  std::array<LeadByte, 256> leads{};
  for (int b = 0xC2; b <= 0xDF; ++b) leads[b] = {2, 0x80, 0xBF};
  for (int b = 0xE0; b <= 0xEF; ++b) leads[b] = {3, 0x80, 0xBF};
  leads[0xE0].secondLow = 0xA0;   // no overlong forms
  leads[0xED].secondHigh = 0x9F;  // no surrogates
  for (int b = 0xF0; b <= 0xF4; ++b) leads[b] = {4, 0x80, 0xBF};
  leads[0xF0].secondLow = 0x90;
  leads[0xF4].secondHigh = 0x8F;  // nothing above U+10FFFF
  return leads;
}();

constexpr bool isContinuation(std::uint8_t b) {
  return (b & 0xC0) == 0x80;
}

// Length of the well-formed multi-byte sequence at `at`, or 0.
std::size_t sequenceLength(std::span<const std::uint8_t> data, std::size_t at) {
  const LeadByte lead = kLeadBytes[data[at]];
  if (lead.length == 0 || data.size() - at < lead.length) return 0;
  const std::uint8_t second = data[at + 1];
  if (second < lead.secondLow || second > lead.secondHigh) return 0;
  for (std::size_t k = 2; k < lead.length; ++k) {
    if (!isContinuation(data[at + k])) return 0;
  }
  return lead.length;
}

// Skips bytes below 0x80, eight at a time where it can.
std::size_t skipAscii(std::span<const std::uint8_t> data, std::size_t at) {
  using namespace word_scan;
  while (data.size() - at >= kWordBytes && (load(data.data() + at) & kHighBits) == 0) {
    at += kWordBytes;
  }
  while (at < data.size() && data[at] < 0x80) ++at;
  return at;
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
  while ((at = skipAscii(data, at)) < data.size()) {
    if (const std::size_t length = sequenceLength(data, at)) {
      at += length;
      continue;
    }
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
