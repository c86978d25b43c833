// RTF in every code page the reader can name: the text that reaches the styled text, as the host
// reads it in the run's encoding.
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "encodings.h"
#include "support/plugin_fixture.h"

namespace zeltest {
namespace {

struct CodePageCase {
  int codePage;
  std::uint32_t hostEncoding;  // what the reader tags the text with
  const char* escapedBytes;    // the page's own bytes for `text`, as RTF hexadecimal escapes
  const char* text;            // UTF-8
};

const CodePageCase kCases[] = {
    {437, 0x0400, "\\'82\\'ab\\'b0", "é½░"},
    {850, 0x0410, "\\'a4\\'92\\'a8", "ñÆ¿"},
    {852, 0x0412, "\\'ac\\'9d\\'8b", "ČŁő"},
    {860, 0x0415, "\\'84\\'99\\'87", "ãÕç"},
    {862, 0x0417, "\\'80\\'81\\'9a", "אבת"},
    {863, 0x0418, "\\'87\\'91\\'86", "çÈ¶"},
    {864, 0x0419, "\\'b3\\'c8", "٣ﺑ"},
    {865, 0x041A, "\\'9b\\'9d\\'af", "øØ¤"},
    {866, 0x041B, "\\'86\\'9f\\'f1", "ЖЯё"},
    {874, 0x041D, "\\'a1\\'ce", "กฮ"},
    {932, 0x0420, "\\'93\\'fa\\'96\\'7b", "日本"},
    {936, 0x0421, "\\'d6\\'d0\\'ce\\'c4", "中文"},
    {949, 0x0422, "\\'c7\\'d1\\'b1\\'b9", "한국"},
    {950, 0x0423, "\\'a4\\'a4\\'a4\\'e5", "中文"},
    {1250, 0x0501, "\\'a3\\'8a\\'f5", "ŁŠő"},
    {1251, 0x0502, "\\'c6\\'df\\'b8", "ЖЯё"},
    {1252, 0x0500, "\\'80\\'e9\\'9f", "€éŸ"},
    {1253, 0x0503, "\\'d9\\'c4\\'f0", "ΩΔπ"},
    {1254, 0x0504, "\\'d0\\'de\\'fd", "ĞŞı"},
    {1255, 0x0505, "\\'e0\\'f9", "אש"},
    {1256, 0x0506, "\\'da\\'d1\\'c8", "عرب"},
    {1257, 0x0507, "\\'c0\\'d0\\'f8", "ĄŠų"},
    {1258, 0x0508, "\\'c3\\'d0\\'fd", "ĂĐư"},
    {1361, 0x0510, "\\'d0\\'65\\'8a\\'82", "한국"},
    {10000, 0x0000, "\\'8e\\'c6\\'db\\'f0", "é∆€\uF8FF"},
    {10001, 0x0001, "\\'93\\'fa\\'96\\'7b", "日本"},
    {10004, 0x0004, "\\'d9\\'d1\\'c8", "عرب"},
    {10005, 0x0005, "\\'e0\\'f9", "אש"},
    {10006, 0x0006, "\\'bf\\'a2\\'f0", "ΩΔπ"},
    {10007, 0x0007, "\\'86\\'9f", "ЖЯ"},
    {10029, 0x001D, "\\'89\\'fc", "ČŁ"},
    {10081, 0x0023, "\\'da\\'de\\'dd\\'f5", "ĞŞı\uF8A0"},
    // Unlisted pages read as Windows Latin 1.
    {10002, 0x0500, "\\'80", "€"},
};

void PrintTo(const CodePageCase& sample, std::ostream* out) {
  *out << "code page " << sample.codePage << " (" << sample.text << ")";
}

class CodePageTest : public PluginFixture, public ::testing::WithParamInterface<CodePageCase> {};

std::string styledTextAsUtf8(REALobject styledText) {
  std::string text;
  for (const zelhost::StyledRun& run : zelhost::styledRuns(styledText)) {
    text += zelhost::detail::convertBytes(run.text, run.textEncoding, encoding::kUTF8)
                .value_or("(not convertible)");
  }
  return text;
}

TEST_P(CodePageTest, HexEscapedTextReachesTheStyledTextAsItsCharacters) {
  const CodePageCase& sample = GetParam();
  const std::string rtf = "{\\rtf1\\ansi\\ansicpg" + std::to_string(sample.codePage) +
                          " Code page " + sample.escapedBytes + " ok}";
  const HostObject styledText(zelhost::newInstance("StyledText"));
  const HostString value(rtf, encoding::kUTF8);
  zelhost::call<void>("RTFDataZEL", styledText.get(), RBBoolean{0}, value.get());
  EXPECT_EQ(styledTextAsUtf8(styledText.get()), std::string("Code page ") + sample.text + " ok");
}

// The bytes behind "\'hh" escapes.
std::string unescaped(std::string_view escapes) {
  constexpr std::string_view kEscape = "\\'";
  constexpr int kHexBase = 16;
  std::string bytes;
  for (std::size_t at = escapes.find(kEscape); at != std::string_view::npos;
       at = escapes.find(kEscape, at + 1)) {
    const std::string digits(escapes.substr(at + kEscape.size(), 2));
    bytes.push_back(static_cast<char>(std::stoi(digits, nullptr, kHexBase)));
  }
  return bytes;
}

TEST_P(CodePageTest, HostWritesThePageBytesAndQuestionMarksForOthers) {
  using zelhost::detail::convertBytes;
  const CodePageCase& sample = GetParam();
  const std::string unrepresentable = "\xF0\x9F\x98\x80";
  const auto written = convertBytes(std::string(sample.text) + unrepresentable, encoding::kUTF8,
                                    sample.hostEncoding);
  EXPECT_EQ(written, unescaped(sample.escapedBytes) + "?");
}

std::string caseName(const ::testing::TestParamInfo<CodePageCase>& info) {
  return "cp" + std::to_string(info.param.codePage);
}

INSTANTIATE_TEST_SUITE_P(EveryNamedPage, CodePageTest, ::testing::ValuesIn(kCases), caseName);

}  // namespace
}  // namespace zeltest
