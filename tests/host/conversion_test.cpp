#include <string>

#include "host_test_support.h"

namespace zeltest {
namespace {

using namespace std::string_literals;

struct Conversion {
  const char* name;
  std::string source;
  std::uint32_t from;
  std::uint32_t to;
  std::string expected;
};

const Conversion kConversions[] = {
    {"utf8 to utf16 native", "a\xC3\xA9\xF0\x9F\x98\x80", encoding::kUTF8, encoding::kUTF16,
     "a\0\xE9\0\x3D\xD8\x00\xDE"s},
    {"utf8 to utf16be", "a\xC3\xA9", encoding::kUTF8, encoding::kUTF16BE, "\0a\0\xE9"s},
    {"utf8 to utf32be", "\xF0\x9F\x98\x80", encoding::kUTF8, encoding::kUTF32BE, "\0\x01\xF6\x00"s},
    {"utf32 native to utf8", "\x00\xF6\x01\x00"s, encoding::kUTF32, encoding::kUTF8,
     "\xF0\x9F\x98\x80"},
    {"utf16le to utf32le", "\x3D\xD8\x00\xDE"s, encoding::kUTF16LE, encoding::kUTF32LE,
     "\x00\xF6\x01\x00"s},
    {"no mark added", "", encoding::kUTF8, encoding::kUTF16, ""},
    {"latin1 to utf8", "\xE9\xFF", encoding::kISOLatin1, encoding::kUTF8, "\xC3\xA9\xC3\xBF"},
    {"cp1252 euro to utf8", "\x80\x9C", encoding::kWindowsLatin1, encoding::kUTF8,
     "\xE2\x82\xAC\xC5\x93"},
    {"mac roman to utf8", "\x80\x8E", encoding::kMacRoman, encoding::kUTF8, "\xC3\x84\xC3\xA9"},
    {"utf8 to mac roman", "\xC3\xA9\xE2\x82\xAC", encoding::kUTF8, encoding::kMacRoman, "\x8E\xDB"},
    {"utf8 to cp1252", "\xE2\x82\xAC\xC3\xA9", encoding::kUTF8, encoding::kWindowsLatin1,
     "\x80\xE9"},
    {"no encoding reads as cp1252", "\x80\xE9", encoding::kNone, encoding::kUTF8,
     "\xE2\x82\xAC\xC3\xA9"},
    {"into no encoding keeps bytes", "\xC3\xA9", encoding::kUTF8, encoding::kNone, "\xC3\xA9"},
    {"unrepresentable in ascii", "a\xC3\xA9z", encoding::kUTF8, encoding::kASCII, "a?z"},
    {"unrepresentable in latin1", "\xE2\x82\xAC", encoding::kUTF8, encoding::kISOLatin1, "?"},
    {"astral in cp1252 is one ?", "\xF0\x9F\x98\x80", encoding::kUTF8, encoding::kWindowsLatin1,
     "?"},
    {"malformed utf8 lead",
     "a\xFF"
     "b",
     encoding::kUTF8, encoding::kUTF16LE,
     "a\0\xFD\xFF"
     "b\0"s},
    {"truncated utf8 is one U+FFFD", "\xE2\x82", encoding::kUTF8, encoding::kUTF32LE,
     "\xFD\xFF\0\0"s},
    {"utf8 surrogate is malformed", "\xED\xA0\x80", encoding::kUTF8, encoding::kUTF16LE,
     "\xFD\xFF\xFD\xFF\xFD\xFF"},
    {"lone utf16 surrogate",
     "\x00\xD8"
     "A\0"s,
     encoding::kUTF16LE, encoding::kUTF8,
     "\xEF\xBF\xBD"
     "A"},
    {"odd utf16 byte", "A\0B"s, encoding::kUTF16, encoding::kUTF8, "A\xEF\xBF\xBD"},
    {"utf32 beyond unicode", "\x00\x00\x11\x00"s, encoding::kUTF32LE, encoding::kUTF8,
     "\xEF\xBF\xBD"},
    {"ascii high byte is malformed", "\x80", encoding::kASCII, encoding::kUTF8, "\xEF\xBF\xBD"},
    {"greek delta is not in mac roman", "\xCE\x94", encoding::kUTF8, encoding::kMacRoman, "?"},
    {"mac roman increment and apple logo", "\xE2\x88\x86\xEF\xA3\xBF", encoding::kUTF8,
     encoding::kMacRoman, "\xC6\xF0"},
    {"cp932 lead byte with a bad trail byte", "\x93 a", 0x0420, encoding::kUTF8, "\xEF\xBF\xBD a"},
    {"cp932 cut-off lead byte", "a\x93", 0x0420, encoding::kUTF8, "a\xEF\xBF\xBD"},
    {"cp936 astral is one ?", "a\xF0\x9F\x98\x80", encoding::kUTF8, 0x0421, "a?"},
#ifdef _WIN32
    // Windows' own table gives the five bytes cp1252 leaves unassigned the C1 controls.
    {"cp1252 unassigned byte", "\x81", encoding::kWindowsLatin1, encoding::kUTF8, "\xC2\x81"},
#else
    {"cp1252 unassigned byte", "\x81", encoding::kWindowsLatin1, encoding::kUTF8, "\xEF\xBF\xBD"},
#endif
    {"same encoding unchanged", "\xFE\xFF\x41\x00"s, encoding::kUTF16, encoding::kUTF16,
     "\xFE\xFF\x41\x00"s},
};

TEST_F(HostFixture, ConvertStringAndStringDataAgree) {
  for (const Conversion& c : kConversions) {
    SCOPED_TRACE(c.name);
    HostString source(c.source, c.from);
    HostString converted(service<service::REALConvertString>("REALConvertString")(source, c.to));
    ASSERT_NE(converted.get(), nullptr);
    EXPECT_EQ(converted.bytes(), c.expected);
    EXPECT_EQ(converted.encoding(), c.to);

    REALstringData data{};
    ASSERT_TRUE(service<service::PluginGetStringData>("PluginGetStringData")(source, c.to, &data));
    EXPECT_EQ(std::string(static_cast<const char*>(data.data), data.length), c.expected);
    EXPECT_EQ(data.encoding, c.to);
    EXPECT_EQ(zelhost::liveCounts().stringData, 1);
    service<service::PluginDisposeStringData>("PluginDisposeStringData")(&data);
  }
}

TEST_F(HostFixture, UnknownEncodingsDoNotConvert) {
  HostString text("abc", encoding::kUTF8);
  EXPECT_EQ(service<service::REALConvertString>("REALConvertString")(text, 0x12345678), nullptr);
  REALstringData data{};
  EXPECT_FALSE(
      service<service::PluginGetStringData>("PluginGetStringData")(text, 0x12345678, &data));
}

TEST_F(HostFixture, StringDataIsTerminatedUnlessAskedNotTo) {
  HostString text("abc", encoding::kUTF8);
  const auto get = service<service::PluginGetStringData>("PluginGetStringData");
  const auto dispose = service<service::PluginDisposeStringData>("PluginDisposeStringData");
  REALstringData data{};
  ASSERT_TRUE(get(text, encoding::kUTF16, &data));
  EXPECT_EQ(std::string(static_cast<const char*>(data.data), data.length + 4),
            "a\0b\0c\0\0\0\0\0"s);
  dispose(&data);
  dispose(&data);
  EXPECT_EQ(zelhost::protocolErrors().size(), 1u);

  zelhost::setStringDataTerminated(false);
  ASSERT_TRUE(get(text, encoding::kUTF8, &data));
  EXPECT_EQ(data.length, 3u);
  dispose(&data);
}

}  // namespace
}  // namespace zeltest
