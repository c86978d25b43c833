// The builders and HostStringBytes through the stand-in host, on new and old hosts.
#include "bridge/string_builders.h"

#include <string>

#include "bridge/host_string_bytes.h"
#include "bridge_fixture.h"

namespace zel {
namespace {

using zeltest::BridgeTest;
using zeltest::HostString;
using zeltest::utf16Bytes;
using zeltest::utf32Bytes;

constexpr double kNewHost = 2025.03;
constexpr double kHostWithoutUtf32 = 2012.5;
constexpr double kOldHost = 2011.04;

std::string repeated(std::string_view bytes, std::size_t times) {
  std::string out;
  for (std::size_t i = 0; i < times; ++i) out += bytes;
  return out;
}

struct BuildCase {
  const char* name;
  double hostVersion;
  std::string input;
  std::uint32_t encoding;
  std::string bytes;
  std::uint32_t resultEncoding;
  const char* logLine = nullptr;
};

const BuildCase kBuildCases[] = {
    {"Latin 1 below 0x80 becomes ASCII", kNewHost, "abc", encoding::kISOLatin1, "abc",
     encoding::kASCII},
    {"Latin 1 keeps its tag", kNewHost, "\xE9", encoding::kISOLatin1, "\xE9", encoding::kISOLatin1},
    {"Mac Roman below 0x80", kNewHost, "abc", encoding::kMacRoman, "abc", encoding::kASCII},
    {"no encoding below 0x80", kOldHost, "abc", encoding::kNone, "abc", encoding::kASCII},
    {"no encoding stays raw", kNewHost, "\x80", encoding::kNone, "\x80", encoding::kNone},
    {"UTF-8 as given", kOldHost, "\xC3\xA9", encoding::kUTF8, "\xC3\xA9", encoding::kUTF8},
    {"unknown encoding passes", kNewHost, "x", 0x12345678, "x", 0x12345678,
     "ZEL Debug: Unknown encoding in REALBuildUnicodeString 305419896"},
    {"UTF-16 comes back as UTF-8", kNewHost, utf16Bytes(u"A\u00E9"), encoding::kUTF16, "A\xC3\xA9",
     encoding::kUTF8},
    {"UTF-16 on an old host", kOldHost, utf16Bytes(u"A\u00E9"), encoding::kUTF16, "A\xC3\xA9",
     encoding::kUTF8},
    {"UTF-32 comes back as UTF-8", kNewHost, utf32Bytes(U"A\U0001F600"), encoding::kUTF32,
     "A\xF0\x9F\x98\x80", encoding::kUTF8},
    {"UTF-32 through UTF-16", kHostWithoutUtf32, utf32Bytes(U"A\U0001F600\x110000\xD800"),
     encoding::kUTF32, "A\xF0\x9F\x98\x80\xEF\xBF\xBD", encoding::kUTF8},
    {"UTF-32 through UTF-16 on the oldest host", kOldHost, utf32Bytes(U"\x110000\xD800z"),
     encoding::kUTF32, "\xEF\xBF\xBDz", encoding::kUTF8},
    {"6 bytes of UTF-32 are one code point", kHostWithoutUtf32, utf32Bytes(U"A") + "bc",
     encoding::kUTF32, "A", encoding::kUTF8},
    {"6 bytes of UTF-32 on a new host", kNewHost, utf32Bytes(U"A") + "bc", encoding::kUTF32, "A",
     encoding::kUTF8},
    {"199 astral code points fit the local buffer", kHostWithoutUtf32,
     repeated(utf32Bytes(U"\U0001F600"), 199), encoding::kUTF32, repeated("\xF0\x9F\x98\x80", 199),
     encoding::kUTF8},
    {"300 astral code points use a block", kHostWithoutUtf32,
     repeated(utf32Bytes(U"\U0001F600"), 300), encoding::kUTF32, repeated("\xF0\x9F\x98\x80", 300),
     encoding::kUTF8},
};

class BuilderTest : public BridgeTest {};

TEST_F(BuilderTest, BuildsByEncodingAndHostVersion) {
  for (const auto& c : kBuildCases) {
    SCOPED_TRACE(c.name);
    useHostVersion(c.hostVersion);
    zelhost::captureLog(true);
    REALstring built =
        REALBuildUnicodeString(c.input.data(), static_cast<RBInteger>(c.input.size()), c.encoding);
    EXPECT_EQ(zelhost::stringBytes(built), c.bytes);
    EXPECT_EQ(zelhost::stringEncoding(built), c.resultEncoding);
    if (c.logLine != nullptr) {
      EXPECT_EQ(logCount(c.logLine), 1);
    }
    EXPECT_EQ(zelhost::liveCounts().strings, 1);  // intermediates are gone
    zelhost::release(built);
  }
}

TEST_F(BuilderTest, OldHostsTagAfterBuilding) {
  useHostVersion(kOldHost);
  REALstring built = REALBuildUnicodeString("\xE9", 1, encoding::kWindowsLatin1);
  EXPECT_EQ(zelhost::stringEncoding(built), encoding::kWindowsLatin1);
  EXPECT_EQ(zelhost::serviceCalls("REALBuildStringWithEncoding"), 0);
  EXPECT_EQ(zelhost::serviceCalls("REALSetStringEncoding"), 1);
  zelhost::release(built);
}

TEST_F(BuilderTest, NoDataGivesNil) {
  EXPECT_EQ(REALBuildUnicodeString("abc", 0, encoding::kUTF8), nullptr);
  EXPECT_EQ(REALBuildUnicodeString("abc", -1, encoding::kUTF8), nullptr);
  EXPECT_EQ(REALBuildUnicodeString(nullptr, 3, encoding::kUTF16), nullptr);
  EXPECT_EQ(CString2RB(nullptr, encoding::kUTF8), nullptr);
  EXPECT_EQ(CString2RB("", encoding::kUTF8), nullptr);
  EXPECT_EQ(REALBuildUnicodeStringUTF16Terminated(u""), nullptr);
  EXPECT_TRUE(log().empty());
  // Only a 64-bit RBInteger can state a count the host's 32-bit count cannot take.
  if constexpr (sizeof(RBInteger) > sizeof(std::int32_t)) {
    constexpr auto kTooBig = static_cast<RBInteger>(std::int64_t{1} << 31);
    EXPECT_EQ(REALBuildUnicodeString("abc", kTooBig, encoding::kUTF8), nullptr);
    EXPECT_EQ(logCount("ZEL Debug: Count too big for REALBuildUnicodeString."), 1);
  }
}

TEST_F(BuilderTest, CString2RBWarnsButBuilds) {
  REALstring ascii = CString2RB("caf\xC3\xA9", encoding::kASCII);
  EXPECT_EQ(zelhost::stringEncoding(ascii), encoding::kASCII);
  EXPECT_EQ(logCount("ZEL Debug: Error: text is not ascii caf\xC3\xA9"), 1);
  REALstring wide = CString2RB("AB", encoding::kUTF16);
  EXPECT_EQ(zelhost::stringBytes(wide), "\xE4\x89\x81");  // U+4241
  EXPECT_EQ(logCount("ZEL Debug: Error: kREALTextEncodingUTF16 not useful for CString2RB!"), 1);
  REALstring wider = CString2RB("AB", encoding::kUTF32);
  EXPECT_EQ(zelhost::stringBytes(wider), "");  // two bytes are no whole code point
  EXPECT_EQ(logCount("ZEL Debug: Error: kREALTextEncodingUTF32 not useful for CString2RB!"), 1);
  zelhost::release(ascii);
  zelhost::release(wide);
  zelhost::release(wider);
}

TEST_F(BuilderTest, TerminatedUtf16Convenience) {
  REALstring built = REALBuildUnicodeStringUTF16Terminated(u"H\u00E9\0ignored");
  EXPECT_EQ(zelhost::stringBytes(built), "H\xC3\xA9");
  zelhost::release(built);
}

TEST_F(BuilderTest, HostFailuresGiveNilWithoutLeaks) {
  const struct {
    double hostVersion;
    const char* failing;
    std::uint32_t encoding;
    const char* logLine;
  } cases[] = {
      {kNewHost, "REALBuildStringWithEncoding", encoding::kUTF8, nullptr},
      {kNewHost, "REALConvertString", encoding::kUTF16, nullptr},
      {kNewHost, "REALConvertString", encoding::kUTF32, nullptr},
      {kOldHost, "REALBuildString", encoding::kISOLatin1, nullptr},
      {kOldHost, "REALBuildString", encoding::kUTF16,
       "ZEL Debug: Out of memory in REALBuildUnicodeStringUTF16."},
      {kHostWithoutUtf32, "REALBuildStringWithEncoding", encoding::kUTF32, nullptr},
  };
  const std::string input = utf32Bytes(U"AB");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.failing);
    zelhost::configure({});
    zelhost::captureLog(true);
    useHostVersion(c.hostVersion);
    zelhost::setServiceFailing(c.failing);
    EXPECT_EQ(REALBuildUnicodeString(input.data(), 8, c.encoding), nullptr);
    if (c.logLine != nullptr) {
      EXPECT_EQ(logCount(c.logLine), 1);
    }
    EXPECT_EQ(zelhost::liveCounts().strings, 0);
    EXPECT_EQ(zelhost::serviceCalls("REALSetStringEncoding"), 0);
  }
}

TEST_F(BuilderTest, HostStringBytesBorrowsAndGivesBack) {
  const HostString text("h\xC3\xA9llo", encoding::kUTF8);
  {
    HostStringBytes bytes(text);
    EXPECT_EQ(bytes.view(), "h\xC3\xA9llo");
    EXPECT_EQ(static_cast<const void*>(bytes.data()), zelhost::stringStorage(text));
    EXPECT_EQ(zelhost::referenceCount(text), 2);
    bytes.close();
    EXPECT_EQ(zelhost::referenceCount(text), 1);
  }
  {
    HostStringBytes converted(text, encoding::kUTF16);
    EXPECT_EQ(converted.view(), utf16Bytes(u"h\u00E9llo"));
    EXPECT_EQ(zelhost::liveCounts().stringData, 1);
  }
  EXPECT_EQ(logCount("ZEL Debug: REALDisposeStringData"), 1);
  zelhost::setServiceFailing("PluginGetStringData");
  EXPECT_EQ(HostStringBytes(text, encoding::kUTF16).size(), 0U);
  EXPECT_EQ(logCount("ZEL Debug: REALGetStringData failed."), 1);
  zelhost::setServiceFailing("StringGetCString");
  const HostStringBytes unreadable(text);
  EXPECT_EQ(unreadable.data(), nullptr);
  EXPECT_EQ(unreadable.size(), 0U);
  EXPECT_EQ(logCount("ZEL Debug: data is NULL, so size fixed to zero."), 1);
  EXPECT_EQ(HostStringBytes(static_cast<REALstring>(nullptr)).view(), "");
}

}  // namespace
}  // namespace zel
