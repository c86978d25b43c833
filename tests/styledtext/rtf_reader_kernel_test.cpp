#include "styledtext/rtf_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "styledtext/code_page_table.h"
#include "styledtext/rtf_writer.h"
#include "styledtext/style_run.h"
#include "text/surrogates.h"

namespace zel::styledtext {
namespace {

struct Span {
  std::int64_t start;
  std::int64_t end;  // just past the paragraph's break
};

// The host cuts text into paragraphs after each CR or LF (CR LF is one break); a final break opens
// no empty paragraph, and an empty text has none.
template <class Char>
std::vector<Span> paragraphSpans(std::basic_string_view<Char> text) {
  std::vector<Span> spans;
  std::int64_t start = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\r' && text[at] != '\n') continue;
    if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ++at;
    spans.push_back({start, static_cast<std::int64_t>(at + 1)});
    start = static_cast<std::int64_t>(at + 1);
  }
  if (start < static_cast<std::int64_t>(text.size())) {
    spans.push_back({start, static_cast<std::int64_t>(text.size())});
  }
  return spans;
}

struct CharStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;
  std::int64_t size = 0;
  std::uint32_t color = 0;
  std::string font;
  bool operator==(const CharStyle&) const = default;
};

struct RecordedRun {
  CharStyle style;
  std::string bytes;
  std::uint32_t encoding;
  std::u16string text;
};

std::string hex(std::uint64_t value, int width) {
  char digits[17];
  std::snprintf(digits, sizeof digits, "%0*llx", width, static_cast<unsigned long long>(value));
  return digits;
}

// One line per run: its text, then whatever differs from the default style.
std::string describe(const RecordedRun& run) {
  std::string out = run.encoding == encoding::kUTF16 ? "U+" + hex(run.text[0], 4) : run.bytes;
  if (run.style.bold) out += " b";
  if (run.style.italic) out += " i";
  if (run.style.underline) out += " u";
  if (run.style.size != 0) out += " s" + std::to_string(run.style.size);
  if (run.style.color != 0) out += " #" + hex(run.style.color, 6);
  if (!run.style.font.empty()) out += " f=" + run.style.font;
  if (run.encoding != encoding::kUTF16 && run.encoding != encoding::kWindowsLatin1) {
    out += " enc=" + hex(run.encoding, 4);
  }
  return out;
}

// A stand-in for the host's StyledText that remembers every call.
class RecordingSink : public StyledTextSink {
 public:
  std::vector<std::string> calls;
  std::vector<RecordedRun> runs;
  std::u16string text;
  std::vector<std::int64_t> alignments;

  void clear() override {
    calls.push_back("clear");
    runs.clear();
    text.clear();
    alignments.clear();
  }
  std::int64_t paragraphCount() override {
    const auto count = static_cast<std::int64_t>(alignments.size());
    calls.push_back("count " + std::to_string(count));
    return count;
  }
  void appendStyleRun(const RunStyle& style, const RunText& runText) override {
    RecordedRun run{{style.bold, style.italic, style.underline, style.size, style.textColor,
                     std::string(style.fontName)},
                    std::string(runText.bytes),
                    runText.encoding,
                    {}};
    if (runText.encoding == encoding::kUTF16) {
      EXPECT_EQ(runText.bytes.size(), 2u);
      char16_t unit = 0;
      std::memcpy(&unit, runText.bytes.data(), sizeof unit);
      run.text = std::u16string(1, unit);
    } else {
      for (const char byte : runText.bytes) run.text += static_cast<unsigned char>(byte);
    }
    EXPECT_FALSE(run.text.empty());
    text += run.text;
    alignments.resize(paragraphSpans(std::u16string_view(text)).size(), 0);
    calls.push_back("append " + describe(run));
    runs.push_back(std::move(run));
  }
  void setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) override {
    calls.push_back("align " + std::to_string(paragraph) + " " + std::to_string(alignment));
    ASSERT_GE(paragraph, 0);
    ASSERT_LT(paragraph, static_cast<std::int64_t>(alignments.size()));
    alignments[static_cast<std::size_t>(paragraph)] = alignment;
  }
};

struct ReadCase {
  const char* name;
  std::string rtf;
  std::vector<std::string> runs;
  std::vector<std::int64_t> alignments = {};  // not checked when empty
};

const std::string kTables =
    "{\\fonttbl{\\f0\\fnil Arial;}{\\f1\\fswiss Times New Roman;}}"
    "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}";

const ReadCase kReadCases[] = {
    // Basics.
    {"TooShort", "{\\rtf1", {}},
    {"NoRtfOpening", "{\\rtx1 Hello}", {}},
    {"EmptyDocument", "{\\rtf1}", {}},
    {"PlainText", "{\\rtf1 Hello}", {"Hello"}},
    {"Toggles",
     "{\\rtf1 \\b a\\b1 b\\b0 c\\i d\\i0\\ul e\\ul0 f\\ul g\\ulnone h}",
     {"a b", "b b", "c", "d i", "e u", "f", "g u", "h"}},
    {"FontSizeHalvedTruncating",
     "{\\rtf1\\fs25 a\\upr30 b\\fs c\\fs-3 d}",
     {"a s12", "b s15", "c", "d s-1"}},
    {"EscapedCharactersAreText", "{\\rtf1 a\\{b\\}c\\\\d}", {"a{b}c\\d"}},
    {"HexEscapeAfterStyleChangeMakesRun", "{\\rtf1 a\\b\\'e9\\'4}", {"a", "\xE9\x04 b"}},
    {"HexEscapeWithoutDigitsAddsNothing", "{\\rtf1 a\\'zb}", {"azb"}},
    {"UnknownWordDroppedWithDelimiter", "{\\rtf1 ab\\foo xcd\\bar?e\\baz5;f}", {"abxcde;f"}},
    {"DelimiterMayBeAnyByte", "{\\rtf1\\b*x\\b0\r\ny}", {"x b", "y"}},
    {"TextOutsideGroupsAfterLastBrace", "{\\rtf1 a}b}c", {"a", "b"}},
    {"UnclosedGroupsFlushAtEnd", "{\\rtf1 a{\\b b", {"a", "b b"}},
    {"GroupsRestoreStyle", "{\\rtf1 a{\\i b{\\b c}d}e}", {"a", "b i", "c b i", "d i", "e"}},
    // Groups that change nothing share their parent's state until one of them changes it.
    {"NestedPlainGroupsRestoreStyle",
     "{\\rtf1 {{\\b{{\\i a}b}{\\ul c}}d}{{e}\\fs8 f}g}",
     {"a b i", "b b", "c b u", "d", "e", "f s4", "g"}},
    // Unicode units and line breaks.
    {"UnicodeUnitIsItsOwnRun", "{\\rtf1 a\\u233 b}", {"a", "U+00e9", "b"}},
    {"DelimiterAfterUnicodeIsSwallowed", "{\\rtf1\\u233?x}", {"U+00e9", "x"}},
    {"NoFallbackSkipping", "{\\rtf1\\uc1\\u233 ?x}", {"U+00e9", "?x"}},
    {"NegativeUnitEqualsUnsigned",
     "{\\rtf1\\u-3 \\u65533 \\u131069 }",
     {"U+fffd", "U+fffd", "U+fffd"}},
    {"NullUnitDropped", "{\\rtf1\\u0 \\u65536 x}", {"x"}},
    {"UnicodeRunTakesStyle", "{\\rtf1\\b\\fs20\\u8364 }", {"U+20ac b s10"}},
    {"SurrogateHalvesSeparately", "{\\rtf1\\u55357 \\u56832 }", {"U+d83d", "U+de00"}},
    {"RawLineBreakEndsRunWithoutText", "{\\rtf1 ab\ncd\r\nef}", {"ab", "cd", "ef"}},
    {"ParAddsCr", "{\\rtf1 ab\\par cd\\par}", {"ab\r", "cd\r"}},
    {"ParAloneMakesRun", "{\\rtf1\\b\\par}", {"\r b"}},
    {"BackslashLineBreakAddsCr", "{\\rtf1 ab\\\ncd\\\r\nef}", {"ab\r", "cd\r", "ef"}},
    // Skipped groups, colour and font tables.
    {"StarDestinationSkippedWithNestedGroups", "{\\rtf1 a{\\*\\foo b{c}d}e}", {"a", "e"}},
    {"SkippedGroupIgnoresKnownWordsInside",
     "{\\rtf1 a{\\*\\generator Writer 6{\\b x}}e}",
     {"a", "e"}},
    {"UnknownGroupSkipped", "{\\rtf1 a{\\foo b{\\b c}}d}", {"a", "d"}},
    {"KnownWordsAfterBraceAreNotSkipped", "{\\rtf1 a{\\b b}c}", {"a", "b b", "c"}},
    {"StarWithoutBraceIsAnEmptyWord", "{\\rtf1 a\\*\\foo b}", {"ab"}},
    {"BinStepsOverBytesEvenWhileSkipping", "{\\rtf1{\\*\\foo\\bin1 }b}a\\bin3 xyzc}", {"ac"}},
    {"IgnoredWordsDoNotFlush", "{\\rtf1 a\\pard\\rtf1\\paperw100 b}", {"ab"}},
    {"ColourTableEntriesFromZero",
     "{\\rtf1" + kTables + "\\cf1 r\\cf2 b\\cf0 k\\cf9 n\\cf1 r\\cf n}",
     {"r #ff0000", "b #0000ff", "k", "n", "r #ff0000", "n"}},
    {"ColourTableWithSpacesAndUnknownWords",
     "{\\rtf1{\\colortbl\\red1 \\alpha9\\green2\\blue3;\n\\red4;}\\cf0 x\\cf1 y}",
     {"x #010203", "y #040000"}},
    {"FontTableEntries",
     "{\\rtf1" + kTables + "\\f1 x\\f0 y\\f5 z}",
     {"x f=Times New Roman", "y f=Arial", "z"}},
    {"FontTableWithoutEntryGroups",
     "{\\rtf1{\\fonttbl\\f0\\fswiss Helvetica;\\f1 Courier;}\\f1 x\\f0 y}",
     {"x f=Courier", "y f=Helvetica"}},
    {"FontTableSkipsNestedDestinationsAndHex",
     "{\\rtf1{\\fonttbl{\\f0\\froman{\\*\\falt Foo} Times;}{\\f1 Caf\\'e9;}}"
     "\\f0 x\\f1 y}",
     {"x f= Times", "y f=Caf"}},
    {"FontNameRawUtf8",
     "{\\rtf1{\\fonttbl{\\f0\\fnil \xC3\x84rial;}}\\f0 x}",
     {"x f=\xC3\x84rial"}},
    {"FontTableEatsDelimiterAfterItsBrace", "{\\rtf1{\\fonttbl{\\f0 A;}}xyz}", {"yz"}},
    // The table keeps its group open, so one more closing brace is needed to end the scan.
    {"FontTableGroupStaysOpen", "{\\rtf1{\\fonttbl{\\f0 A;}} a}b}c", {"a", "b", "c"}},
    {"FontTableDropsPendingText", "{\\rtf1\\b ab{\\fonttbl{\\f0 X;}}\\i cd}", {"cd b i"}},
    {"TableDropsPendingTextOfOpenRun", "{\\rtf1 ab{\\colortbl;}cd}", {"cd"}},
    // Code pages and paragraph alignment.
    {"CodePages",
     "{\\rtf1\\ansicpg1251 a\\ansicpg10029 b\\ansicpg10002 c\\mac d\\ansicpg1361 e"
     "\\ansicpg437 f\\ansi g\\ansicpg10081 h}",
     {"a enc=0502", "b enc=001d", "c", "d enc=0000", "e enc=0510", "f enc=0400", "g",
      "h enc=0023"}},
    {"EncodingBelongsToGroup", "{\\rtf1 a{\\ansicpg1253 b}c}", {"a", "b enc=0503", "c"}},
    {"AlignmentPerParagraph",
     "{\\rtf1\\qc a\\par b\\par\\qr c\\par\\ql d}",
     {"a\r", "b\r", "c\r", "d"},
     {2, 2, 3, 1}},
    {"PardKeepsAlignmentJustifiedIsLeft",
     "{\\rtf1\\qr a\\par\\pard b\\par\\qj c}",
     {"a\r", "b\r", "c"},
     {3, 3, 1}},
    {"AlignmentSurvivesGroups", "{\\rtf1{\\qc a\\par}b}", {"a\r", "b"}, {2, 2}},
    {"OnlyFirstOpenedParagraphAligned", "{\\rtf1\\qr a\\'0db\\'0dc}", {"a\rb\rc"}, {3, 0, 0}},
    {"RunInsideParagraphSetsNothing", "{\\rtf1 a\\qc b\\par c}", {"a", "b\r", "c"}, {0, 2}}};

TEST(RtfReader, BuildsRuns) {
  for (const ReadCase& c : kReadCases) {
    SCOPED_TRACE(c.name);
    RecordingSink sink;
    readRtf(c.rtf, sink);
    ASSERT_FALSE(sink.calls.empty());
    EXPECT_EQ(sink.calls.front(), "clear");
    std::vector<std::string> runs;
    for (const RecordedRun& run : sink.runs) runs.push_back(describe(run));
    EXPECT_EQ(runs, c.runs);
    if (!c.alignments.empty()) {
      EXPECT_EQ(sink.alignments, c.alignments);
    }
  }
}

// The host's building order: count, append, count, then the alignment of the first paragraph the
// run opened.
TEST(RtfReader, CallsSinkInBuildingOrder) {
  RecordingSink sink;
  readRtf("{\\rtf1\\qc a\\par b\\u233 }", sink);
  EXPECT_EQ(sink.calls,
            (std::vector<std::string>{"clear", "count 0", "append a\r", "count 1", "align 0 2",
                                      "count 1", "append b", "count 2", "align 1 2", "count 2",
                                      "append U+00e9", "count 2"}));
}

// Writing then reading: the same text, styles and paragraph alignments, except that line breaks
// come back as CR (paired per run), control characters below tab vanish, a run with no font name
// keeps the font before it, and alignment 0 after another alignment comes back as left.
struct SourceRun {
  std::u32string text;
  CharStyle style;
  std::optional<std::string> font;
};

struct ExpectedText {
  std::u16string text;
  std::vector<CharStyle> styles;
  std::vector<std::int64_t> alignments;  // reader's alignment at each unit
};

std::u16string toUtf16(std::u32string_view text) {
  std::u16string out;
  for (const char32_t c : text) {
    if (c < text::kFirstSupplementary) {
      out += static_cast<char16_t>(c);
    } else {
      out += {text::highSurrogateOf(c), text::lowSurrogateOf(c)};
    }
  }
  return out;
}

ExpectedText expectedReadBack(const std::vector<StyleRunRecord>& records) {
  ExpectedText expected;
  std::string font;
  std::int64_t written = 0;
  std::int64_t readBack = 0;
  for (const StyleRunRecord& record : records) {
    if (record.alignment != written) {
      written = record.alignment;
      readBack = written == 2 || written == 3 ? written : 1;
    }
    if (record.font && !record.font->empty()) font = *record.font;
    const CharStyle style{record.bold, record.italic,    record.underline,
                          record.size, record.textColor, font};
    char16_t previous = 0;
    for (const char16_t unit : record.text) {
      const bool pairedBreak =
          (unit == '\n' && previous == '\r') || (unit == '\r' && previous == '\n');
      previous = unit;
      if (unit < 9 || pairedBreak) continue;
      expected.text += unit == '\n' ? u'\r' : unit;
      expected.styles.push_back(style);
      expected.alignments.push_back(readBack);
    }
  }
  return expected;
}

class StyledTextGenerator {
 public:
  explicit StyledTextGenerator(unsigned seed) : random_(seed) {}

  std::vector<SourceRun> runs() {
    std::vector<SourceRun> out(pick(1, 10));
    for (SourceRun& run : out) {
      static const std::vector<std::optional<std::string>> kFonts = {
          std::nullopt, "", "Arial", "Times New Roman", "\xC3\x84rial \xC3\x9Cnicode", "Courier"};
      static const std::vector<std::uint32_t> kColors = {0, 0xFF0000, 0x00FF00, 0x0000FF, 0x123456};
      run.font = kFonts[pick(0, kFonts.size() - 1)];
      run.style.size = std::vector<std::int64_t>{0, 9, 10, 12, 13, 24, 72}[pick(0, 6)];
      run.style.color = pick(0, 5) == 5 ? random_() & 0xFFFFFF : kColors[pick(0, 4)];
      run.style.bold = pick(0, 1) == 1;
      run.style.italic = pick(0, 1) == 1;
      run.style.underline = pick(0, 1) == 1;
      for (std::size_t piece = pick(0, 12); piece > 0; --piece) run.text += textPiece();
    }
    return out;
  }

  std::int64_t alignment() { return static_cast<std::int64_t>(pick(0, 3)); }

 private:
  std::u32string textPiece() {
    static const std::vector<std::u32string> kPieces = {
        U"word",   U" ",          U"Two words",  U"{",    U"}",    U"\\",     U"\t",
        U"\r",     U"\n",         U"\r\n",       U"\n\r", U"\x01", U"\u00E9", U"\u20AC",
        U"\u4E2D", U"\U0001F600", U"\U0010FFFF", U"123",  U";"};
    return kPieces[pick(0, kPieces.size() - 1)];
  }

  std::size_t pick(std::size_t low, std::size_t high) {
    return std::uniform_int_distribution<std::size_t>(low, high)(random_);
  }

  std::mt19937 random_;
};

// Records as the host's snapshot gives them: positions in code points, each run aligned by the
// paragraph that covers its midpoint.
std::vector<StyleRunRecord> snapshot(const std::vector<SourceRun>& runs,
                                     StyledTextGenerator& generator, bool skipParagraphs) {
  std::vector<StyleRunRecord> records;
  std::u32string whole;
  for (const SourceRun& run : runs) {
    StyleRunRecord record;
    record.bold = run.style.bold;
    record.italic = run.style.italic;
    record.underline = run.style.underline;
    record.textColor = run.style.color;
    record.size = run.style.size;
    record.font = run.font;
    record.text = toUtf16(run.text);
    record.startPos = static_cast<std::int64_t>(whole.size());
    record.length = static_cast<std::int64_t>(run.text.size());
    record.midPos = record.startPos + record.length / 2;
    whole += run.text;
    records.push_back(std::move(record));
  }
  std::vector<ParagraphRange> paragraphs;
  for (const Span& span : paragraphSpans(std::u32string_view(whole))) {
    paragraphs.push_back({span.start, span.end, generator.alignment()});
  }
  if (!skipParagraphs) claimParagraphAlignments(records, paragraphs);
  return records;
}

class RtfRoundTrip : public testing::TestWithParam<bool> {};

TEST_P(RtfRoundTrip, GivesBackTextStylesAndAlignments) {
  const bool skipParagraphs = GetParam();
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    StyledTextGenerator generator(seed);
    const std::vector<StyleRunRecord> records =
        snapshot(generator.runs(), generator, skipParagraphs);
    RtfWriteOptions options;
    options.skipParagraphs = skipParagraphs;
    const std::string rtf = writeRtf(records, options);

    RecordingSink sink;
    readRtf(rtf, sink);

    const ExpectedText expected = expectedReadBack(records);
    ASSERT_EQ(sink.text, expected.text) << rtf;
    std::vector<CharStyle> styles;
    for (const RecordedRun& run : sink.runs) {
      if (run.encoding == encoding::kUTF16) {
        EXPECT_GE(run.text[0], 128) << rtf;
      } else {
        EXPECT_EQ(run.encoding, encoding::kWindowsLatin1);
        for (const char16_t unit : run.text) EXPECT_LT(unit, 128) << rtf;
      }
      styles.insert(styles.end(), run.text.size(), run.style);
    }
    EXPECT_EQ(styles, expected.styles) << rtf;

    std::vector<std::int64_t> alignments;
    for (const Span& span : paragraphSpans(std::u16string_view(expected.text))) {
      alignments.push_back(expected.alignments[static_cast<std::size_t>(span.start)]);
    }
    EXPECT_EQ(sink.alignments, alignments) << rtf;
  }
}

INSTANTIATE_TEST_SUITE_P(Paragraphs, RtfRoundTrip, testing::Bool(),
                         [](const auto& test) { return test.param ? "Skipped" : "Kept"; });

struct ClaimCase {
  const char* name;
  std::vector<std::int64_t> starts;  // runs' startPos, each next one ends the run before it
  std::int64_t textEnd;
  std::vector<ParagraphRange> paragraphs;
  std::vector<std::int64_t> alignments;
};

const ClaimCase kClaimCases[] = {
    {"EachRunByItsMidpoint", {0, 4}, 8, {{0, 4, 2}, {4, 8, 3}}, {2, 3}},
    {"MidpointOnBoundaryGoesToLater", {0}, 8, {{0, 4, 2}, {4, 8, 3}}, {3}},
    {"SingleCharacterRunAtItsStart", {0, 4, 5}, 6, {{0, 4, 1}, {4, 6, 2}}, {1, 2, 2}},
    {"UncoveredRunKeepsZero", {0, 5}, 9, {{0, 4, 3}}, {3, 0}},
    {"EmptyRunsAtTheEdges", {0, 0, 4, 4}, 4, {{0, 4, 2}}, {2, 2, 2, 2}}};

TEST(ParagraphClaims, MidpointDecides) {
  for (const ClaimCase& c : kClaimCases) {
    SCOPED_TRACE(c.name);
    std::vector<StyleRunRecord> runs(c.starts.size());
    for (std::size_t at = 0; at < runs.size(); ++at) {
      const std::int64_t end = at + 1 < runs.size() ? c.starts[at + 1] : c.textEnd;
      runs[at].startPos = c.starts[at];
      runs[at].length = end - runs[at].startPos;
      runs[at].midPos = runs[at].startPos + runs[at].length / 2;
    }
    claimParagraphAlignments(runs, c.paragraphs);
    std::vector<std::int64_t> alignments;
    for (const StyleRunRecord& run : runs) alignments.push_back(run.alignment);
    EXPECT_EQ(alignments, c.alignments);
  }
}

TEST(ParagraphClaims, RunsOutOfOrderStillFindTheirParagraph) {
  std::vector<StyleRunRecord> runs(3);
  runs[0].midPos = 6;
  runs[1].midPos = 1;
  runs[2].midPos = 4;
  claimParagraphAlignments(runs, std::vector<ParagraphRange>{{0, 4, 2}, {4, 8, 3}});
  EXPECT_EQ(runs[0].alignment, 3);
  EXPECT_EQ(runs[1].alignment, 2);
  EXPECT_EQ(runs[2].alignment, 3);
}

}  // namespace
}  // namespace zel::styledtext
