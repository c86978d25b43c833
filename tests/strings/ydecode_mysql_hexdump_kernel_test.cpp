#include "strings/ydecode_mysql_hexdump.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "strings/kernel_test_support.h"

namespace zel::strings {
namespace {

using namespace std::string_literals;

struct Case {
  std::string input, expected;
};

TEST(YDecodeKernel, SubtractsAndUnescapes) {
  const std::vector<Case> cases = {{"\x6B\x6C", "AB"},
                                   {"=}", "\x13"},
                                   {"=", "\x96"},
                                   {"a=", "7\x96"},
                                   {"==", "\xD3"},
                                   {"\0"s, "\xD6"},
                                   {"\x2A=\x6A\x2B", "\0\0\x01"s},
                                   {"", ""}};
  for (const auto& c : cases) EXPECT_EQ(yDecode(ExactBytes(c.input)), c.expected) << c.input;
}

TEST(MySqlKernel, Escapes) {
  const std::vector<Case> cases = {
      {"a\\nb", "a\nb"},
      {"\\q", "\\q"},
      {"\\0\\'\\\"\\b\\n\\r\\t\\Z\\\\\\%\\_", "\0'\"\b\n\r\t\x1A\\%_"s},
      {"ab\\", "ab\\\0"s},
      {"\\", "\\\0"s},
      {"\\\\\\", "\\\\\0"s},
      {"\\\0"s, "\\\0"s},
      {"", ""}};
  for (const auto& c : cases)
    EXPECT_EQ(decodeMySqlEscapes(ExactBytes(c.input)), c.expected) << c.input;
}

// The dump as described: pad the hex text with hexlen x linelen fillers, build lines while the
// read position is inside the digits, cut to whole lines of the padded text.
std::string referenceHexDump(std::string_view bytes, const HexDumpLayout& layout) {
  const auto hexLen = static_cast<std::size_t>(layout.groupDigits);
  const auto lineLen = static_cast<std::size_t>(layout.groupsPerLine);
  std::string hex;
  for (const char c : bytes) {
    hex += "0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4];
    hex += "0123456789ABCDEF"[c & 15];
  }
  const std::size_t digits = hex.size();
  for (std::size_t i = 0; i < hexLen * lineLen; ++i) {
    hex += layout.filler.empty() ? "0" : layout.filler;
  }
  std::string out;
  for (std::size_t read = 0; read < digits;) {
    out += layout.lineStart;
    for (std::size_t group = 0; group < lineLen; ++group, read += hexLen) {
      out += hex.substr(read, hexLen);
      if (group + 1 < lineLen) out += layout.spacer;
    }
    out += layout.lineEnd;
  }
  const std::size_t lineSize = hexLen * lineLen + (lineLen - 1) * layout.spacer.size() +
                               layout.lineStart.size() + layout.lineEnd.size();
  return out.substr(0, hex.size() / (hexLen * lineLen) * lineSize);
}

TEST(HexDumpKernel, DescribedExample) {
  EXPECT_EQ(hexDump("\x01\x02\x03", {2, 2, "[", "]", " ", ""}), "[01 02][03 00]");
  EXPECT_EQ(hexDump("\x01", {3, 2, "[", "]", " ", "ab"}), "[01a bab]");
}

TEST(HexDumpKernel, MatchesDescriptionForEverySmallLayout) {
  const std::vector<std::string> inputs = {"", "\xAB", "\x01\x23", "\x45\x67\x89", "Hello, dump!"};
  const std::vector<HexDumpLayout> decorations = {
      {0, 0, "", "", "", ""}, {0, 0, "<", ">\n", " ", "."}, {0, 0, "", "", "--", "xy"}};
  for (std::int64_t hexLen = 1; hexLen <= 7; ++hexLen) {
    for (std::int64_t lineLen = 1; lineLen <= 7; ++lineLen) {
      for (HexDumpLayout layout : decorations) {
        layout.groupDigits = hexLen;
        layout.groupsPerLine = lineLen;
        const ExactBytes lineStart(layout.lineStart), lineEnd(layout.lineEnd);
        const ExactBytes spacer(layout.spacer), filler(layout.filler);
        const HexDumpLayout exactLayout = {hexLen, lineLen, lineStart, lineEnd, spacer, filler};
        for (const auto& input : inputs) {
          ASSERT_EQ(hexDump(ExactBytes(input), exactLayout), referenceHexDump(input, layout))
              << hexLen << "x" << lineLen << " " << input;
        }
      }
    }
  }
}

TEST(HexDumpKernel, RejectsCountsBelowOneAndImpossibleSizes) {
  for (const auto& [hexLen, lineLen] : std::vector<std::pair<std::int64_t, std::int64_t>>{
           {0, 2}, {2, 0}, {-1, 2}, {2, -1}, {-4, -4}, {INT64_MIN, 1}}) {
    EXPECT_EQ(hexDump("abc", {hexLen, lineLen, "", "", "", ""}), "") << hexLen << " " << lineLen;
  }
  EXPECT_THROW(hexDump("a", {INT64_MAX, INT64_MAX, "", "", "", ""}), std::bad_alloc);
  EXPECT_THROW(hexDump("a", {INT64_MAX, 2, "", "", "", ""}), std::bad_alloc);
}

}  // namespace
}  // namespace zel::strings
