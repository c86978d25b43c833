#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "strings/utf8_repair.h"

namespace zel::strings {
namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<std::uint8_t>;

std::span<const std::uint8_t> span(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(Utf8RepairKernel, OnePlaceholderPerBadByte) {
  struct Case {
    std::string_view data, placeholder, expected;
  };
  for (const Case& c : std::vector<Case>{{"A\xC3(B", "?", "A?(B"},
                                         {"\xE2\x82", "?", "??"},  // cut off
                                         {"\xF0\x9F\x98", "?", "???"},
                                         {"\xC0\x80", "?", "??"},  // overlong
                                         {"\xE0\x9F\xBF", "?", "???"},
                                         {"\xED\xA0\x80", "?", "???"},       // surrogate
                                         {"\xF4\x90\x80\x80", "?", "????"},  // above U+10FFFF
                                         {"\xF5\x80", "?", "??"},
                                         {"\x80x\xBF", "<>", "<>x<>"},
                                         {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80", "?",
                                          "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"},
                                         {"\0\x01\x7F"sv, "?", "\0\x01\x7F"sv},  // any ASCII stays
                                         {"a\xFF"
                                          "b",
                                          "", "ab"},
                                         {"a\xFF"
                                          "b",
                                          "\xEF\xBF\xBD",
                                          "a\xEF\xBF\xBD"
                                          "b"},
                                         {"a\xFF"
                                          "b",
                                          "[\0]"sv, "a[b"},  // placeholder ends at its NUL
                                         {"", "?", ""}}) {
    EXPECT_EQ(repairUtf8(span(c.data), c.placeholder), c.expected) << c.data;
  }
}

TEST(Utf8RepairKernel, ReadableStringsLongerThanMinLength) {
  struct Case {
    std::string_view data;
    std::int64_t minLength;
    std::vector<std::string_view> expected;
  };
  const auto sample = "\0ABC\0  \0D"sv;
  for (const Case& c :
       std::vector<Case>{{sample, 0, {"ABC", "D"}},
                         {sample, 3, {}},
                         {sample, 2, {"ABC"}},
                         {sample, -5, {"ABC", "D"}},
                         {"\t \r\n", 0, {}},  // blanks only
                         {" A\tB\x7F"
                          "CD",
                          0,
                          {" A\tB", "CD"}},                          // DEL ends a run
                         {"\xC3\xA9", 1, {"\xC3\xA9"}},              // length counts bytes
                         {"AB\xE2\x82", 0, {"AB"}},                  // a cut-off sequence ends it
                         {"AB\xC3\xC3\xA9", 0, {"AB", "\xC3\xA9"}},  // the ending byte is skipped
                         {"\xF0\x9F\x98\x80!", 4, {"\xF0\x9F\x98\x80!"}}}) {
    const auto strings = readableStrings(span(c.data), c.minLength);
    EXPECT_EQ(strings, c.expected) << c.data << " / " << c.minLength;
  }
}

// Literal model: decode each sequence to its code point and check the ranges; on a rejected
// run, move on by one byte.
std::size_t modelSequenceLength(const Bytes& data, std::size_t at) {
  const std::uint8_t lead = data[at];
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
  if (length == 0 || lead >= 0xF8 || at + length > data.size()) return 0;
  std::uint32_t value = lead & (0x7F >> length);
  for (std::size_t k = 1; k < length; ++k) {
    if ((data[at + k] & 0xC0) != 0x80) return 0;
    value = value << 6 | (data[at + k] & 0x3F);
  }
  const std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  if (value < least[length] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return 0;
  return length;
}

std::size_t modelRunEnd(const Bytes& data, std::size_t at) {
  while (at < data.size()) {
    const std::uint8_t b = data[at];
    if (b == 9 || b == 10 || b == 13 || (b >= 32 && b < 127)) {
      ++at;
    } else if (const std::size_t length = modelSequenceLength(data, at)) {
      at += length;
    } else {
      break;
    }
  }
  return at;
}

TEST(Utf8RepairKernel, ReadableStringsMatchByteByByteModelOnRandomData) {
  std::mt19937 random(11);
  const std::uint8_t pieces[] = {'a',  ' ',  '\n', 0,    0x7F, 0x80, 0xBF, 0xC2, 0xC3,
                                 0xE0, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xA0, 0x9F, 0x90};
  for (int round = 0; round < 200; ++round) {
    Bytes data(1 + random() % 64);
    for (auto& b : data) b = pieces[random() % std::size(pieces)];
    const std::int64_t minLength = static_cast<std::int64_t>(random() % 6) - 1;

    std::vector<std::string_view> strings;
    for (std::size_t start = 0; start < data.size();) {
      const std::size_t end = modelRunEnd(data, start);
      const bool blank = std::all_of(&data[start], &data[0] + end, [](auto b) { return b <= 32; });
      if (end == start || blank || static_cast<std::int64_t>(end - start) <= minLength) {
        ++start;
        continue;
      }
      strings.emplace_back(reinterpret_cast<const char*>(&data[start]), end - start);
      start = end + 1;
    }
    EXPECT_EQ(readableStrings(data, minLength), strings) << "round " << round;
  }
}

}  // namespace
}  // namespace zel::strings
