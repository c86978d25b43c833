// yEnc bodies, MySQL escapes and hex dumps through the built plug-in.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using namespace std::string_literals;
using zeltest::expectString;
using zeltest::HostObject;
using zeltest::HostString;
using zeltest::makeArgument;

constexpr std::uint32_t kNone = encoding::kNone, kAscii = encoding::kASCII, kUtf8 = encoding::kUTF8;

// nullopt stands for the nil string, in arguments and results alike.
using Bytes = std::optional<std::string>;

class YDecodeMySqlHexDumpTest : public zeltest::PluginFixture {};

TEST_F(YDecodeMySqlHexDumpTest, DecodersReturnRawBytes) {
  struct Case {
    const char* function;
    Bytes input;
    Bytes expected;
    std::uint32_t encoding;  // bytes all below 0x80 come back tagged ASCII
  };
  const std::vector<Case> cases = {
      {"_yDecodeStringZEL", "\x6B\x6C", "AB", kAscii},
      {"_yDecodeStringZEL", "\x29\xC3", "\xFF\x99", kNone},
      {"_yDecodeStringZEL", "a=", "\x37\x96", kNone},
      {"_yDecodeStringZEL", "", std::nullopt, 0},
      {"_yDecodeStringZEL", std::nullopt, std::nullopt, 0},
      {"DecodingFromMySQLZEL", "a\\nb\\tc\\Z", "a\nb\tc\x1A", kAscii},
      {"DecodingFromMySQLZEL", "\\0\\'\\\"\\\\\\%\\_\\q", "\0'\"\\%_\\q"s, kAscii},
      {"DecodingFromMySQLZEL", "\xC3\xA9\\r\\b\\", "\xC3\xA9\r\b\\\0"s, kNone},
      {"DecodingFromMySQLZEL", "", std::nullopt, 0},
      {"DecodingFromMySQLZEL", std::nullopt, std::nullopt, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.function) + " of " + testing::PrintToString(c.input));
    const HostString input(makeArgument(c.input));
    expectString(zelhost::call<REALstring>(c.function, input.get()), c.expected, c.encoding);
  }
}

TEST_F(YDecodeMySqlHexDumpTest, MemoryBlockFormDecodesIntoANewBlock) {
  const HostObject encoded(zelhost::makeMemoryBlock("\x6B=}\x29"));
  const HostObject decoded(zelhost::call<REALobject>("_yDecodeMemoryZEL", encoded.get()));
  ASSERT_NE(decoded.get(), nullptr);
  EXPECT_EQ(zelhost::className(decoded), "MemoryBlock");
  EXPECT_EQ(zelhost::memoryBlockBytes(decoded), "A\x13\xFF");
  EXPECT_EQ(zelhost::memoryBlockBytes(encoded), "\x6B=}\x29");

  const HostObject empty(zelhost::makeMemoryBlock(""));
  for (const REALobject block : {empty.get(), REALobject{nullptr}}) {
    EXPECT_EQ(zelhost::call<REALobject>("_yDecodeMemoryZEL", block), nullptr);
  }
  EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);

  zelhost::setMemoryBlockConstructorFailing();
  const HostObject body(zelhost::makeMemoryBlock("\x6B\x6C"));
  EXPECT_EQ(zelhost::call<REALobject>("_yDecodeMemoryZEL", body.get()), nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfMemoryException");
  EXPECT_EQ(raised->message, "Failed to allocate a memoryblock with 2 bytes in size.");
}

TEST_F(YDecodeMySqlHexDumpTest, HexDumpLaysOutGroupsAndLines) {
  struct Case {
    Bytes input;
    RBInteger hexLength, lineLength;
    Bytes lineStart, lineEnd, spacer, filler;
    Bytes expected;
  };
  constexpr RBInteger kHuge = std::numeric_limits<RBInteger>::max();
  const std::vector<Case> cases = {
      {"\x01\x02\x03", 2, 2, "[", "]", " ", "", "[01 02][03 00]"},
      {"\x01\x02\x03", 2, 2, "[", "]", " ", std::nullopt, "[01 02][03 00]"},
      {"\xAB\xCD\xEF", 1, 4, std::nullopt, "\n", "-", ".", "A-B-C-D\nE-F-.-.\n"},
      {"\xC3\xA9", 4, 1, "> ", std::nullopt, std::nullopt, "x", "> C3A9"},
      {"\x01", 2, 2, "\xC3\xA9", std::nullopt, std::nullopt, "",
       "\xC3\xA9"
       "0100"},
      {std::nullopt, 2, 2, "[", "]", " ", ".", std::nullopt},
      {"", 2, 2, "[", "]", " ", ".", std::nullopt},
      {"\x01", 2, -1, "[", "]", " ", ".", std::nullopt},
      {"\x01", kHuge, kHuge, "[", "]", " ", ".", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.input) + " " + std::to_string(c.hexLength) + "x" +
                 std::to_string(c.lineLength));
    const HostString input(makeArgument(c.input, kNone)), start(makeArgument(c.lineStart)),
        end(makeArgument(c.lineEnd)), spacer(makeArgument(c.spacer)),
        filler(makeArgument(c.filler));
    expectString(zelhost::call<REALstring>("HexstringZEL", input.get(), c.hexLength, c.lineLength,
                                           start.get(), end.get(), spacer.get(), filler.get()),
                 c.expected, kAscii);
  }
}

}  // namespace
