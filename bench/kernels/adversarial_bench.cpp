// Inputs built to hurt: every kernel over degenerate text at 64 KiB, 256 KiB and 1 MiB. A kernel
// that is linear takes about 16 times as long at 1 MiB as at 64 KiB (up to 20 with caches).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench_inputs.h"
#include "counting_sink.h"
#include "strings/accent_map.h"
#include "strings/byte_ops.h"
#include "strings/code_pages.h"
#include "strings/entities.h"
#include "strings/line_endings.h"
#include "strings/tag_stripping.h"
#include "strings/text_search.h"
#include "strings/transfer_encodings.h"
#include "strings/unicode_composition.h"
#include "strings/utf8_repair.h"
#include "strings/ydecode_mysql_hexdump.h"
#include "styledtext/rtf_reader.h"
#include "styledtext/rtf_writer.h"

namespace {

using namespace zel::strings;
using namespace zel::styledtext;

constexpr std::size_t kSmall = 64 * 1024;
constexpr std::size_t kMiddle = 256 * 1024;
constexpr std::size_t kLarge = zeltest::kLarge;

// `unit` repeated to exactly `length` units (the last copy may be cut).
template <class Char>
std::basic_string<Char> repeat(std::basic_string_view<Char> unit, std::size_t length) {
  std::basic_string<Char> out;
  out.reserve(length + unit.size());
  while (out.size() < length) out += unit;
  out.resize(length);
  return out;
}
std::string repeat(std::string_view unit, std::size_t length) {
  return repeat<char>(unit, length);
}

std::string nearMiss(std::size_t length) {
  return std::string(length - 1, 'a') + 'b';
}

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Runs that each differ from all the others in font and colour.
std::vector<StyleRunRecord> manyRuns(std::size_t runs, std::u16string_view text) {
  std::vector<StyleRunRecord> out(runs);
  for (std::size_t i = 0; i < runs; ++i) {
    out[i].font = "Font " + std::to_string(i);
    out[i].textColor = static_cast<std::uint32_t>(i);
    out[i].size = 1 + static_cast<std::int64_t>(i % 100);
    out[i].alignment = static_cast<std::int64_t>(i % 4);
    out[i].text = text;
  }
  return out;
}

// A case makes its input for a size once and hands back the work to time.
using Work = std::function<void()>;
struct Case {
  const char* name;
  std::function<Work(std::size_t)> prepare;
};

// Work over one byte string.
template <class Kernel>
std::function<Work(std::size_t)> onBytes(std::function<std::string(std::size_t)> make,
                                         Kernel kernel) {
  return [make, kernel](std::size_t n) -> Work {
    return [input = make(n), kernel] { benchmark::DoNotOptimize(kernel(input)); };
  };
}
std::function<std::string(std::size_t)> repeated(std::string unit) {
  return [unit](std::size_t n) { return repeat(unit, n); };
}
// A UTF-16 text of n units.
template <class Kernel>
std::function<Work(std::size_t)> onUtf16(std::u16string unit, Kernel kernel) {
  return [unit, kernel](std::size_t n) -> Work {
    return [input = repeat<char16_t>(unit, n), kernel] { benchmark::DoNotOptimize(kernel(input)); };
  };
}
// `head`, then `count` copies of `fill`.
std::u32string padded(std::u32string_view head, std::size_t count, char32_t fill) {
  std::u32string text(head);
  text.append(count, fill);
  return text;
}
// A UTF-32 text of n / 4 code points (n bytes).
template <class Kernel>
std::function<Work(std::size_t)> onUtf32(std::u32string unit, Kernel kernel) {
  return [unit, kernel](std::size_t n) -> Work {
    return [input = repeat<char32_t>(unit, n / 4), kernel] {
      benchmark::DoNotOptimize(kernel(input));
    };
  };
}

std::size_t readRuns(std::string_view rtf) {
  zeltest::CountingSink sink;
  readRtf(rtf, sink);
  return static_cast<std::size_t>(sink.paragraphCount());
}

const HexDumpLayout kDumpLayout{2, 16, "", "\n", " ", ""};

const std::vector<Case> kCases = {
    // Search: a long pattern that fails only at its end, and patterns made of their own borders.
    {"WholeWordNearMiss",
     [](std::size_t n) -> Work {
       return [text = std::string(n, 'a'), word = nearMiss(n / 4)] {
         benchmark::DoNotOptimize(containsWholeWord(text, word));
       };
     }},
    {"WholeWordEveryHitRejected",
     onBytes(repeated("xa"), [](const std::string& s) { return containsWholeWord(s, "A"); })},
    {"WholeWordPeriodic",
     [](std::size_t n) -> Work {
       return [text = repeat("ab", n), word = repeat("ab", n / 4) + "b"] {
         benchmark::DoNotOptimize(containsWholeWord(text, word));
       };
     }},
    {"CountNearMiss",
     [](std::size_t n) -> Work {
       return [text = std::string(n, 'a'), find = nearMiss(n / 4)] {
         benchmark::DoNotOptimize(countOccurrences(text, find));
       };
     }},
    {"CountPeriodic",
     [](std::size_t n) -> Work {
       return [text = repeat("ab", n), find = repeat("ab", n / 4) + "b"] {
         benchmark::DoNotOptimize(countOccurrences(text, find));
       };
     }},
    {"CountOverlapping",
     onBytes(repeated("a"), [](const std::string& s) { return countOccurrences(s, "aa"); })},
    {"AnyByteOfALongSet",
     [](std::size_t n) -> Work {
       return [target = std::string(n, 'a'), set = std::string(n, 'b')] {
         benchmark::DoNotOptimize(positionOfAnyByte(target, set));
       };
     }},
    {"MaskXorLongMask",
     [](std::size_t n) -> Work {
       return [data = std::string(n, 'a'), mask = std::string(n - 1, 'b')] {
         benchmark::DoNotOptimize(maskXor(data, mask, 7));
       };
     }},
    // Entities.
    {"DecodeEntitiesAllAmpersands", onUtf32(U"&", decodeEntities)},
    {"DecodeEntitiesLongName",
     [](std::size_t n) -> Work {
       return [text = padded(U"&", n / 4, U'a')] {
         benchmark::DoNotOptimize(decodeEntities(text));
       };
     }},
    {"DecodeEntitiesLongNumber",
     [](std::size_t n) -> Work {
       return [text = padded(U"&#", n / 4, U'9')] {
         benchmark::DoNotOptimize(decodeEntities(text));
       };
     }},
    {"DecodeEntitiesLongHex",
     [](std::size_t n) -> Work {
       return [text = padded(U"&#x", n / 4, U'f')] {
         benchmark::DoNotOptimize(decodeEntities(text));
       };
     }},
    {"DecodeEntitiesUnterminated", onUtf32(U"&amp", decodeEntities)},
    {"DecodeEntitiesPrefixes", onUtf32(U"&a&am&amp&ampx", decodeEntities)},
    {"EncodeHtmlAllLessThan",
     onUtf32(U"<", [](std::u32string_view s) { return encodeHtmlEntities(s, 0); })},
    {"EncodeHtmlAllNonAscii",
     onUtf32(U"\u00E9", [](std::u32string_view s) { return encodeHtmlEntities(s, 0); })},
    {"EncodeXmlAllAmpersands",
     onUtf32(U"&", [](std::u32string_view s) { return encodeXmlEntities(s, 0); })},
    {"MarkupReadyPlainText", onBytes(repeated("a"), isMarkupReady)},
    // Transfer encodings.
    {"DecodeUrlAllPercent",
     onBytes(repeated("%"), [](const std::string& s) { return decodeUrl(s, 1); })},
    {"EncodeUrlAllPercent",
     onBytes(repeated("%"), [](const std::string& s) { return encodeUrl(s, 2); })},
    {"DecodeHexNoDigits", onBytes(repeated("g"), decodeHex)},
    {"DecodeQuotedPrintableAllEquals", onBytes(repeated("="), decodeQuotedPrintable)},
    {"DecodeQuotedPrintableSoftBreaks", onBytes(repeated("=\r\n"), decodeQuotedPrintable)},
    {"EncodeQuotedPrintableAllSpaces",
     onBytes(repeated(" "), [](const std::string& s) { return encodeQuotedPrintable(s, 72); })},
    {"EncodeQuotedPrintableAllEquals",
     onBytes(repeated("="), [](const std::string& s) { return encodeQuotedPrintable(s, 72); })},
    {"EncodeEmailSubjectNonAscii", onBytes(repeated("\xC3\xA9"), encodeEmailSubject)},
    // Tags and SQL.
    {"RemoveTagsAllLessThan",
     onBytes(repeated("<"), [](const std::string& s) { return removeHtmlTags(s, " "); })},
    {"RemoveTagsNested",
     [](std::size_t n) -> Work {
       return [text = std::string(n / 2, '<') + std::string(n / 2, '>')] {
         benchmark::DoNotOptimize(removeHtmlTags(text, ""));
       };
     }},
    {"RemoveTagsOpenComments",
     onBytes(repeated("<!--"), [](const std::string& s) { return removeHtmlTags(s, ""); })},
    {"SqlBooleansAllQuotes", onBytes(repeated("'"), replaceSqlBooleans)},
    {"SqlBooleansAllTrue", onBytes(repeated("TRUE "), replaceSqlBooleans)},
    {"SqlBooleansUnclosedPrefix", onBytes(repeated("TRU"), replaceSqlBooleans)},
    // Unicode: combining marks pile up on one base, and in the worst order for sorting.
    {"ComposeOneLongMarkRun",
     [](std::size_t n) -> Work {
       return [text = u"e" + std::u16string(n / 2, u'\u0301')] {
         benchmark::DoNotOptimize(composeCharacters(text));
       };
     }},
    {"ComposeMarksOutOfOrder",
     [](std::size_t n) -> Work {
       return [text = u"a" + repeat<char16_t>(u"\u0301\u0316", n / 2)] {
         benchmark::DoNotOptimize(composeCharacters(text));
       };
     }},
    {"DecomposeMarksOutOfOrder",
     [](std::size_t n) -> Work {
       return [text = u"\u00E9" + repeat<char16_t>(u"\u0301\u0316", n / 2)] {
         benchmark::DoNotOptimize(decomposeCharacters(text));
       };
     }},
    {"DecomposeAllPrecomposed", onUtf16(u"\u1E69", [](std::u16string_view s) {
       return decomposeCharacters(s);
     })},
    {"RemoveAccentsAllMarks", onUtf16(u"\u0301", [](std::u16string_view s) {
       return removeAccents(s, true, builtAccentMap());
     })},
    {"EncodeCodePageUnmapped", onUtf16(u"\uFFFD", [](std::u16string_view s) {
       return encodeCodePage(s, CodePage::Windows1252);
     })},
    {"EncodeCodePageHighEntries", onUtf16(u"\u2122", [](std::u16string_view s) {
       return encodeCodePage(s, CodePage::Windows1252);
     })},
    // RTF reading.
    {"ReadRtfAllOpenBraces",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + std::string(n, '{')] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfNestedBraces",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + std::string(n / 2, '{') + "x" + std::string(n / 2, '}')] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfAllCloseBraces",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + std::string(n, '}')] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfRepeatedUnicode",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + repeat("\\u233?", n)] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfUnicodeWithHexFallback",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1\\uc2 " + repeat("\\u233\\'e9\\'e9", n)] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfHugeSkipCount",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + repeat("\\uc999999999 \\u233 ", n)] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfAllHexEscapes",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + repeat("\\'e9", n)] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfAllBackslashes",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + std::string(n, '\\')] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfLongControlWord",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 \\" + std::string(n, 'a') + " x}"] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfLongNumber",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 \\fs" + std::string(n, '9') + " x}"] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfLongColourTable",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1{\\colortbl" + repeat("\\red1;", n) + "}" + repeat("\\cf9 x", n / 4) +
                     "}"] { benchmark::DoNotOptimize(readRuns(rtf)); };
     }},
    {"ReadRtfLongFontTable",
     [](std::size_t n) -> Work {
       std::string fonts;
       for (std::size_t i = 0; fonts.size() < n; ++i) {
         fonts += "{\\f" + std::to_string(i) + " F" + std::to_string(i) + ";}";
       }
       std::string body;
       for (std::size_t i = 0; body.size() < n / 2; i += 7) {
         body += "\\f" + std::to_string(i) + " x";
       }
       return [rtf = "{\\rtf1{\\fonttbl" + fonts + "}" + body + "}"] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    {"ReadRtfParagraphs",
     [](std::size_t n) -> Work {
       return [rtf = "{\\rtf1 " + repeat("\\qc x\\par ", n) + "}"] {
         benchmark::DoNotOptimize(readRuns(rtf));
       };
     }},
    // RTF writing: each run brings a new font and colour, so both tables grow with the input.
    {"WriteRtfDistinctRuns",
     [](std::size_t n) -> Work {
       return [runs = manyRuns(n / 64, u"{text}\\ \u00E9\u2122\n")] {
         benchmark::DoNotOptimize(writeRtf(runs));
       };
     }},
    {"WriteRtfOneRunOfSpecials",
     [](std::size_t n) -> Work {
       return [runs = manyRuns(1, repeat<char16_t>(u"{}\\\u00E9\n", n / 2))] {
         benchmark::DoNotOptimize(writeRtf(runs));
       };
     }},
    // Repair, readable strings, line endings, yEnc, MySQL, hex dump.
    {"ReadableStringsAllRejected", onBytes(repeated("a"), [](const std::string& s) {
       return readableStrings(bytesOf(s), static_cast<std::int64_t>(s.size()));
     })},
    {"ReadableStringsCutSequences", onBytes(repeated("a\xE2\x82"), [](const std::string& s) {
       return readableStrings(bytesOf(s), 0);
     })},
    {"RepairUtf8CutSequences", onBytes(repeated("\xE2\x82"), [](const std::string& s) {
       return repairUtf8(bytesOf(s), "?");
     })},
    {"LineEndingsAllCarriageReturns", onBytes(repeated("\r"), [](const std::string& s) {
       return replaceLineEndings(s, "\r\n", false, [] {});
     })},
    {"YDecodeAllEquals", onBytes(repeated("="), yDecode)},
    {"MySqlAllBackslashes", onBytes(repeated("\\"), decodeMySqlEscapes)},
    {"HexDump", onBytes(repeated("a"), [](const std::string& s) { return hexDump(s, kDumpLayout); })},
};

void runCase(benchmark::State& state, const Case& c) {
  const Work work = c.prepare(static_cast<std::size_t>(state.range(0)));
  // Once untimed, so that a single timed pass at 1 MiB is not mostly the first touch of memory.
  work();
  for (auto _ : state) work();
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

[[maybe_unused]] const bool kRegistered = [] {
  buildAccentMap();
  for (const Case& c : kCases) {
    benchmark::RegisterBenchmark((std::string("BM_Adversarial/") + c.name).c_str(), runCase, c)
        ->Arg(kSmall)
        ->Arg(kMiddle)
        ->Arg(kLarge)
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
