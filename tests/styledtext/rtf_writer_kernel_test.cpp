#include "styledtext/rtf_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace zel::styledtext {
namespace {

struct Run {
  std::u16string text = {};
  std::optional<std::string> font = std::nullopt;
  std::int64_t size = 0;
  std::uint32_t color = 0;
  bool bold = false;
  bool italic = false;
  bool underline = false;
  std::int64_t alignment = 0;
};

std::vector<StyleRunRecord> records(const std::vector<Run>& runs) {
  std::vector<StyleRunRecord> out;
  for (const Run& run : runs) {
    StyleRunRecord record;
    record.bold = run.bold;
    record.italic = run.italic;
    record.underline = run.underline;
    record.textColor = run.color;
    record.size = run.size;
    record.alignment = run.alignment;
    record.font = run.font;
    record.text = run.text;
    out.push_back(record);
  }
  return out;
}

constexpr std::string_view kBodyStart = "\\uc0 ";

// What follows the header, without the closing brace.
std::string body(const std::string& rtf) {
  const auto start = rtf.find(kBodyStart);
  EXPECT_NE(start, std::string::npos);
  EXPECT_EQ(rtf.back(), '}');
  return rtf.substr(start + kBodyStart.size(), rtf.size() - start - kBodyStart.size() - 1);
}

TEST(RtfWriter, WorkedExample) {
  const auto runs = records({
      {.text = u"Hello ", .font = "Arial", .size = 12, .bold = true},
      {.text = u"World\n", .font = "Arial", .size = 12, .color = 0xFF0000, .italic = true},
  });
  EXPECT_EQ(writeRtf(runs),
            "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl\\red0\\green0"
            "\\blue0;\\red255\\green0\\blue0;}\\uc0 \\b\\f0\\fs24 Hello \\b0\\i\\cf1 World\\par }");
}

TEST(RtfWriter, NoRunsGiveNothing) {
  EXPECT_EQ(writeRtf({}), "");
}

struct HeaderCase {
  const char* name;
  std::vector<Run> runs;
  std::string header;  // everything before the body
};

const HeaderCase kHeaderCases[] = {
    {"NoFontsBlackOnly",
     {{.text = u"x"}},
     "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl}{\\colortbl\\red0\\green0\\blue0;}\\uc0 "},
    {"FirstColourIsIndexZero",
     {{.text = u"x", .color = 0x123456}, {.text = u"y"}, {.text = u"z", .color = 0x123456}},
     "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl}{\\colortbl\\red18\\green52\\blue86;"
     "\\red0\\green0\\blue0;}\\uc0 "},
    {"FontsByFirstUseNilAndEmptyLeftOut",
     {{.text = u"a", .font = "Times"},
      {.text = u"b"},
      {.text = u"c", .font = ""},
      {.text = u"d", .font = "Arial"},
      {.text = u"e", .font = "Times"}},
     "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Times;}{\\f1\\fnil Arial;}}"
     "{\\colortbl\\red0\\green0\\blue0;}\\uc0 "},
    {"FontNamesRawUtf8Unescaped",
     {{.text = u"a", .font = "\xC3\x84rial {x};"}},
     "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil \xC3\x84rial {x};;}}"
     "{\\colortbl\\red0\\green0\\blue0;}\\uc0 "},
    {"ColourComponentsIgnoreHighByte",
     {{.text = u"a", .color = 0xAB00FF80}},
     "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl}{\\colortbl\\red0\\green255\\blue128;}"
     "\\uc0 "}};

TEST(RtfWriter, TablesInOrderOfFirstAppearance) {
  for (const HeaderCase& c : kHeaderCases) {
    SCOPED_TRACE(c.name);
    const std::string rtf = writeRtf(records(c.runs));
    EXPECT_EQ(rtf.substr(0, rtf.find(kBodyStart) + kBodyStart.size()), c.header);
  }
}

struct BodyCase {
  BodyCase(const char* caseName, std::vector<Run> input, std::string expected, bool skip = false)
      : name(caseName), runs(std::move(input)), body(std::move(expected)), skipParagraphs(skip) {}

  const char* name;
  std::vector<Run> runs;
  std::string body;
  bool skipParagraphs;
};

const BodyCase kBodyCases[] = {
    {"PlainRunWritesNoControlWords", {{.text = u"abc"}}, "abc"},
    {"FirstRunInColourUsesIndexZero", {{.text = u"a", .color = 0xFF}}, "\\cf0 a"},
    {"BackToBlackWritesItsIndex",
     {{.text = u"a", .color = 0xFF}, {.text = u"b"}},
     "\\cf0 a\\cf1 b"},
    {"SizeOnlyOnChange",
     {{.text = u"a", .size = 12}, {.text = u"b", .size = 12}, {.text = u"c", .size = 0}},
     "\\fs24 ab\\fs0 c"},
    {"NegativeSizeRoundsTowardZero", {{.text = u"a", .size = -3}}, "\\fs-5 a"},
    {"NilFontKeepsPreviousFont",
     {{.text = u"a", .font = "Arial"}, {.text = u"b"}, {.text = u"c", .font = "Arial"}},
     "\\f0 abc"},
    {"EmptyFontWritesNothing",
     {{.text = u"a", .font = "Arial"}, {.text = u"b", .font = ""}, {.text = u"c"}},
     "\\f0 abc"},
    {"FontSwitchesBackByIndex",
     {{.text = u"a", .font = "Arial"},
      {.text = u"b", .font = "Times"},
      {.text = u"c", .font = "Arial"}},
     "\\f0 a\\f1 b\\f0 c"},
    {"TogglesOnAndOff",
     {{.text = u"a", .bold = true, .italic = true, .underline = true}, {.text = u"b"}},
     "\\b\\i\\ul a\\b0\\i0\\ul0 b"},
    {"FixedOrderOfControlWords",
     {{.text = u"a",
       .font = "F",
       .size = 9,
       .color = 1,
       .bold = true,
       .italic = true,
       .underline = true,
       .alignment = 3}},
     "\\qr\\b\\i\\ul\\f0\\cf0\\fs18 a"},
    {"Alignments",
     {{.text = u"a", .alignment = 2},
      {.text = u"b", .alignment = 3},
      {.text = u"c", .alignment = 1},
      {.text = u"d", .alignment = 0},
      {.text = u"e", .alignment = 0},
      {.text = u"f", .alignment = 7}},
     "\\qc a\\qr b\\ql c\\ql de\\ql f"},
    {"SkipParagraphsWritesNoAlignment",
     {{.text = u"a", .alignment = 2}, {.text = u"b", .alignment = 3}},
     "ab",
     true},
    {"Escapes", {{.text = u"a{b}\\c"}}, "a\\{b\\}\\\\c"},
    {"UnicodeEscapesUnsignedAndSurrogates",
     {{.text = u"\u00E9\u20AC\U0001F600\uFFFF\u0080"}},
     "\\u233 \\u8364 \\u55357 \\u56832 \\u65535 \\u128 "},
    {"LineBreakPairing",
     {{.text = u"1\r\n2\n\r3\r\r4\n\n5"}},
     "1\\par 2\\par 3\\par \\par 4\\par \\par 5"},
    {"BlankLineInCrLfTextCollapses", {{.text = u"a\r\n\r\nb"}}, "a\\par b"},
    {"PairingStopsAtRunBoundary", {{.text = u"a\r"}, {.text = u"\nb"}}, "a\\par \\par b"},
    {"ControlCharactersDroppedOthersRaw",
     {{.text = std::u16string(u"\x01\x02\x03\x04\x05\x06\x07\x08\t\x0B\x0C\x0E\x7F", 13)},
      {.text = std::u16string(1, u'\0')}},
     "\t\x0B\x0C\x0E\x7F"},
    {"ControlCharacterStillBreaksPairing", {{.text = u"\r\x01\n"}}, "\\par \\par "},
    {"ControlWordsWithoutTextStillEndWithBlank",
     {{.text = u"", .bold = true}, {.text = u"x", .bold = true}},
     "\\b x"}};

TEST(RtfWriter, WritesChangesAndEscapes) {
  for (const BodyCase& c : kBodyCases) {
    SCOPED_TRACE(c.name);
    RtfWriteOptions options;
    options.skipParagraphs = c.skipParagraphs;
    EXPECT_EQ(body(writeRtf(records(c.runs), options)), c.body);
  }
}

// The host compares font names its own way; a name it calls equal writes no new "\f".
TEST(RtfWriter, FontComparisonIsTheCallers) {
  const auto runs = records({{.text = u"a", .font = "Arial"},
                             {.text = u"b", .font = "ARIAL"},
                             {.text = u"c", .font = "Times"}});
  RtfWriteOptions options;
  options.sameFont = [](std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) {
      return std::tolower(static_cast<unsigned char>(x)) ==
             std::tolower(static_cast<unsigned char>(y));
    });
  };
  const std::string rtf = writeRtf(runs, options);
  EXPECT_NE(rtf.find("{\\f1\\fnil ARIAL;}"), std::string::npos);
  EXPECT_EQ(body(rtf), "\\f0 ab\\f2 c");
  EXPECT_EQ(body(writeRtf(runs)), "\\f0 a\\f1 b\\f2 c");
}

}  // namespace
}  // namespace zel::styledtext
