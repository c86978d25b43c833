// Random styled texts written through RTFDataZEL and read back into a new StyledText. Character
// by character, the text and its style come back as the writer and reader define them: controls
// below tab vanish, each line break (CR LF and LF CR counting once within a run) becomes CR, sizes
// travel as rounded half-points, a run without a font keeps the font before it, and colours keep
// their low 24 bits.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "support/fuzz_host.h"

namespace {

using zelhost::StyledRun;

constexpr std::array kFonts = {"Arial", "Times New Roman", "Gill Sans", "\xC3\x9Cml\xC3\xA4ut"};
constexpr std::size_t kMaxRuns = 8;
constexpr std::int64_t kMinSize = -8;
constexpr std::int64_t kMaxSize = 2000;
constexpr RBColor kRgbMask = 0xFFFFFF;
constexpr char16_t kLastDroppedControl = 8;
constexpr char16_t kLineFeed = 10;
constexpr char16_t kCarriageReturn = 13;

// One character of the expected or the read-back text with the style it carries.
struct StyledUnit {
  char16_t unit;
  bool bold;
  bool italic;
  bool underline;
  RBInteger size;
  RBColor color;
  std::string font;
  bool operator==(const StyledUnit&) const = default;
};

// Code points the host can hold in UTF-8 and the plug-in reads back unchanged (no surrogates,
// no byte-order marks).
char32_t codePoint(FuzzedDataProvider& input) {
  enum Range { Ascii, Latin1, Bmp, Supplementary, kRanges };
  switch (input.ConsumeIntegralInRange<int>(0, kRanges - 1)) {
    case Ascii:
      return input.ConsumeIntegralInRange<char32_t>(0, 0x7F);
    case Latin1:
      return input.ConsumeIntegralInRange<char32_t>(0x80, 0xFF);
    case Bmp: {
      const char32_t c = input.ConsumeIntegralInRange<char32_t>(0x100, 0xFFFD);
      return (c >= 0xD800 && c <= 0xDFFF) || c == 0xFEFF ? U'?' : c;
    }
    default:
      return input.ConsumeIntegralInRange<char32_t>(0x10000, 0x10FFFF);
  }
}

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

void appendUtf16(std::u16string& out, char32_t c) {
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
  } else {
    out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
  }
}

// Valid UTF-8 (the host's own conversions produce nothing else) as UTF-16 units.
std::u16string utf16Of(std::string_view utf8) {
  std::u16string out;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t c = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t k = 1; k < length && i + k < utf8.size(); ++k) {
      c = (c << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
    }
    appendUtf16(out, c);
    i += length;
  }
  return out;
}

// A run's text as UTF-16 units: its own units when it is UTF-16 (a "\u" run may hold half a
// surrogate pair), else through the host's conversion.
std::u16string unitsOf(const std::string& bytes, std::uint32_t encoding) {
  if (encoding == encoding::kUTF16) {
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return units;
  }
  const REALstring text = zelhost::makeString(bytes, encoding);
  const std::string utf8 = zelhost::convertToUtf8(text);
  zelhost::release(text);
  return utf16Of(utf8);
}

RBInteger sizeAfterRoundTrip(RBInteger size) {
  const auto halfPoints = static_cast<std::int64_t>(static_cast<double>(size) * 2.0 + 0.5);
  return halfPoints / 2;
}

StyledRun randomRun(FuzzedDataProvider& input, std::u16string& units) {
  StyledRun run;
  const std::size_t length = input.ConsumeIntegralInRange<std::size_t>(1, 24);
  for (std::size_t i = 0; i < length; ++i) {
    const char32_t c = codePoint(input);
    appendUtf8(run.text, c);
    appendUtf16(units, c);
  }
  if (input.ConsumeBool())
    run.font = kFonts[input.ConsumeIntegralInRange<std::size_t>(0, kFonts.size() - 1)];
  run.size = input.ConsumeIntegralInRange(kMinSize, kMaxSize);
  run.bold = input.ConsumeBool();
  run.italic = input.ConsumeBool();
  run.underline = input.ConsumeBool();
  run.color = input.ConsumeIntegral<RBColor>();
  return run;
}

std::vector<StyledUnit> expectedUnits(const std::vector<StyledRun>& runs,
                                      const std::vector<std::u16string>& texts) {
  std::vector<StyledUnit> expected;
  std::string font;
  for (std::size_t r = 0; r < runs.size(); ++r) {
    const StyledRun& run = runs[r];
    if (run.font) font = *run.font;
    char16_t previous = 0;
    for (const char16_t unit : texts[r]) {
      const bool pairedBreak = (unit == kLineFeed && previous == kCarriageReturn) ||
                               (unit == kCarriageReturn && previous == kLineFeed);
      previous = unit;
      if (unit <= kLastDroppedControl || pairedBreak) continue;
      const char16_t written = unit == kLineFeed ? kCarriageReturn : unit;
      expected.push_back({written, run.bold, run.italic, run.underline,
                          sizeAfterRoundTrip(run.size), run.color & kRgbMask, font});
    }
  }
  return expected;
}

std::vector<StyledUnit> readBackUnits(const std::vector<StyledRun>& runs) {
  std::vector<StyledUnit> units;
  for (const StyledRun& run : runs) {
    const std::u16string fontUnits =
        run.font ? unitsOf(*run.font, run.fontEncoding) : std::u16string();
    std::string font;
    for (const char16_t unit : fontUnits) appendUtf8(font, unit);
    for (const char16_t unit : unitsOf(run.text, run.textEncoding)) {
      units.push_back({unit, run.bold, run.italic, run.underline, run.size, run.color, font});
    }
  }
  return units;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zeltest::loadPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto readRtf = zelhost::bind<REALstring, REALobject, RBBoolean>("RTFDataZEL");
  static const auto assignRtf =
      zelhost::bind<void, REALobject, RBBoolean, REALstring>("RTFDataZEL");
  FuzzedDataProvider input(data, size);
  const auto skipParagraphs = static_cast<RBBoolean>(input.ConsumeBool());
  std::vector<StyledRun> runs;
  std::vector<std::u16string> texts;
  const std::size_t count = input.ConsumeIntegralInRange<std::size_t>(0, kMaxRuns);
  for (std::size_t i = 0; i < count; ++i) {
    texts.emplace_back();
    runs.push_back(randomRun(input, texts.back()));
  }

  const REALobject original = zelhost::makeStyledText(runs);
  const REALstring rtf = readRtf(original, skipParagraphs);
  auto raised = zelhost::takeRaisedException();
  const REALobject copy = zelhost::newInstance("StyledText");
  if (rtf != nullptr) assignRtf(copy, RBBoolean{0}, rtf);
  if (!raised) raised = zelhost::takeRaisedException();
  const bool same = readBackUnits(zelhost::styledRuns(copy)) == expectedUnits(runs, texts);
  const std::string written = zelhost::stringBytes(rtf);
  zelhost::release(rtf);
  zelhost::release(copy);
  zelhost::release(original);
  zeltest::checkAfterCall("RTFDataZEL", raised, {});
  if (!same) zeltest::fail("text or style changed on the way through RTF", written);
  return 0;
}
