#include "styledtext/rtf_writer.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <unordered_map>
#include <vector>

namespace zel::styledtext {
namespace {

// What happens to a UTF-16 unit below 128; everything from 128 up becomes a "\u" escape.
enum class UnitKind : std::uint8_t { kPlain, kDropped, kLineFeed, kCarriageReturn, kEscaped };

constexpr std::array<UnitKind, 128> kUnitKinds = [] {
  std::array<UnitKind, 128> kinds{};
  for (std::size_t unit = 0; unit < 9; ++unit) kinds[unit] = UnitKind::kDropped;
  kinds['\n'] = UnitKind::kLineFeed;
  kinds['\r'] = UnitKind::kCarriageReturn;
  kinds['\\'] = kinds['{'] = kinds['}'] = UnitKind::kEscaped;
  return kinds;
}();

constexpr bool isPlain(char16_t unit) {
  return unit < 128 && kUnitKinds[unit] == UnitKind::kPlain;
}

constexpr std::uint64_t kLanes = 0x0001000100010001;  // one in each 16-bit lane
constexpr std::uint64_t kLaneHighBits = kLanes * 0x8000;

// Four units at once: true when each is ASCII from 14 up and none needs a backslash. May say
// false for a plain block (a borrow crosses lanes), never true for one that is not.
constexpr bool allPlain(std::uint64_t units) {
  const auto anyBelow = [](std::uint64_t x, std::uint64_t n) {
    return ((x - kLanes * n) & ~x & kLaneHighBits) != 0;
  };
  const auto anyEqual = [&](std::uint64_t value) { return anyBelow(units ^ (kLanes * value), 1); };
  return (units & (kLanes * 0xFF80)) == 0 && !anyBelow(units, 14) && !anyEqual('\\') &&
         !anyEqual('{') && !anyEqual('}');
}

// Copies ASCII units as bytes, four at a time where the lanes sit in little-endian order.
void narrowAscii(const char16_t* from, std::size_t count, char* to) {
  if constexpr (std::endian::native == std::endian::little) {
    for (; count >= 4; count -= 4, from += 4, to += 4) {
      std::uint64_t lanes = 0;
      std::memcpy(&lanes, from, sizeof lanes);
      lanes |= lanes >> 8;
      const auto bytes =
          static_cast<std::uint32_t>((lanes & 0xFFFF) | ((lanes >> 16) & 0xFFFF0000));
      std::memcpy(to, &bytes, sizeof bytes);
    }
  }
  for (; count > 0; --count) *to++ = static_cast<char>(*from++);
}

std::size_t plainStretchEnd(std::u16string_view text, std::size_t at) {
  std::uint64_t block = 0;
  while (at + 4 <= text.size()) {
    std::memcpy(&block, text.data() + at, sizeof block);
    if (!allPlain(block)) break;
    at += 4;
  }
  while (at < text.size() && isPlain(text[at])) ++at;
  return at;
}

// Worst cases, so that the output never grows while it is written: every control word of a run
// with 20-digit numbers, and "\u65535 " for each unit.
constexpr std::size_t kRunControlBound = 128;
constexpr std::size_t kUnitBound = 8;
constexpr std::size_t kTableEntryBound = 64;

void appendNumber(std::string& out, std::int64_t value) {
  std::array<char, 24> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  out.append(digits.data(), result.ptr);
}

// Integer part of points * 2 + 0.5; saturates where the double leaves the 64-bit range.
std::int64_t halfPoints(double points) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  const double half = points * 2.0 + 0.5;
  if (half >= kLimit) return std::numeric_limits<std::int64_t>::max();
  if (half <= -kLimit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(half);
}

bool hasFontName(const StyleRunRecord& run) {
  return run.font && !run.font->empty();
}

// Fonts and colours numbered in order of first appearance, with each run's entries remembered.
struct Tables {
  std::vector<std::string_view> fonts;
  std::vector<std::uint32_t> colors;
  std::vector<std::size_t> runFont;
  std::vector<std::size_t> runColor;

  explicit Tables(std::span<const StyleRunRecord> runs) {
    std::unordered_map<std::string_view, std::size_t> fontIndex;
    std::unordered_map<std::uint32_t, std::size_t> colorIndex;
    runFont.reserve(runs.size());
    runColor.reserve(runs.size());
    for (const StyleRunRecord& run : runs) {
      const auto color = colorIndex.try_emplace(run.textColor, colors.size());
      if (color.second) colors.push_back(run.textColor);
      runColor.push_back(color.first->second);
      if (hasFontName(run)) {
        const auto font = fontIndex.try_emplace(*run.font, fonts.size());
        if (font.second) fonts.push_back(*run.font);
        runFont.push_back(font.first->second);
      } else {
        runFont.push_back(0);
      }
    }
  }
};

std::size_t outputBound(std::span<const StyleRunRecord> runs, const Tables& tables) {
  std::size_t bound = 64 + kTableEntryBound * (tables.fonts.size() + tables.colors.size());
  for (std::string_view font : tables.fonts) bound += font.size();
  for (const StyleRunRecord& run : runs) bound += kRunControlBound + kUnitBound * run.text.size();
  return bound;
}

void writeHeader(std::string& out, const Tables& tables) {
  out += "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl";
  for (std::size_t index = 0; index < tables.fonts.size(); ++index) {
    out += "{\\f";
    appendNumber(out, static_cast<std::int64_t>(index));
    out += "\\fnil ";
    out += tables.fonts[index];
    out += ";}";
  }
  out += "}{\\colortbl";
  for (const std::uint32_t color : tables.colors) {
    out += "\\red";
    appendNumber(out, (color >> 16) & 0xFF);
    out += "\\green";
    appendNumber(out, (color >> 8) & 0xFF);
    out += "\\blue";
    appendNumber(out, color & 0xFF);
    out += ';';
  }
  out += "}\\uc0 ";
}

// Line-break pairing starts afresh in every run.
void writeText(std::string& out, std::u16string_view text) {
  char16_t previous = 0;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t plainEnd = plainStretchEnd(text, at);
    if (plainEnd > at) {
      const std::size_t written = out.size();
      out.resize(written + (plainEnd - at));
      narrowAscii(text.data() + at, plainEnd - at, out.data() + written);
      previous = text[plainEnd - 1];
      at = plainEnd;
      continue;
    }
    const char16_t unit = text[at++];
    if (unit >= 128) {
      out += "\\u";
      appendNumber(out, unit);
      out += ' ';
    } else {
      switch (kUnitKinds[unit]) {
        case UnitKind::kLineFeed:
          if (previous != '\r') out += "\\par ";
          break;
        case UnitKind::kCarriageReturn:
          if (previous != '\n') out += "\\par ";
          break;
        case UnitKind::kEscaped:
          out += '\\';
          out += static_cast<char>(unit);
          break;
        case UnitKind::kDropped:
        case UnitKind::kPlain:
          break;
      }
    }
    previous = unit;
  }
}

// What the document has switched on so far; each run writes only what differs from it.
class RunWriter {
 public:
  RunWriter(std::string& out, const Tables& tables, const RtfWriteOptions& options)
      : out_(out),
        tables_(tables),
        skipParagraphs_(options.skipParagraphs),
        sameFont_(options.sameFont != nullptr ? options.sameFont : &sameFontBytes) {}

  void write(const StyleRunRecord& run, std::size_t index) {
    const std::size_t before = out_.size();
    const std::int64_t alignment = skipParagraphs_ ? kAlignDefault : run.alignment;
    if (alignment != alignment_) {
      out_ += alignment == kAlignCentre ? "\\qc" : alignment == kAlignRight ? "\\qr" : "\\ql";
      alignment_ = alignment;
    }
    toggle(run.bold, bold_, "\\b", "\\b0");
    toggle(run.italic, italic_, "\\i", "\\i0");
    toggle(run.underline, underline_, "\\ul", "\\ul0");
    if (hasFontName(run) && (!font_ || !sameFont_(*font_, *run.font))) {
      out_ += "\\f";
      appendNumber(out_, static_cast<std::int64_t>(tables_.runFont[index]));
      font_ = *run.font;
    }
    if (run.textColor != color_) {
      out_ += "\\cf";
      appendNumber(out_, static_cast<std::int64_t>(tables_.runColor[index]));
      color_ = run.textColor;
    }
    const auto size = static_cast<double>(run.size);
    if (size != size_) {
      out_ += "\\fs";
      appendNumber(out_, halfPoints(size));
      size_ = size;
    }
    if (out_.size() != before) out_ += ' ';
    writeText(out_, run.text);
  }

 private:
  void toggle(bool wanted, bool& current, std::string_view on, std::string_view off) {
    if (wanted == current) return;
    out_ += wanted ? on : off;
    current = wanted;
  }

  std::string& out_;
  const Tables& tables_;
  const bool skipParagraphs_;
  const FontNamesMatch sameFont_;
  std::int64_t alignment_ = kAlignDefault;
  bool bold_ = false;
  bool italic_ = false;
  bool underline_ = false;
  std::optional<std::string_view> font_;
  std::uint32_t color_ = 0;
  double size_ = 0.0;
};

}  // namespace

std::string writeRtf(std::span<const StyleRunRecord> runs, const RtfWriteOptions& options) {
  std::string out;
  if (runs.empty()) return out;
  const Tables tables(runs);
  out.reserve(outputBound(runs, tables));
  writeHeader(out, tables);
  RunWriter writer(out, tables, options);
  for (std::size_t index = 0; index < runs.size(); ++index) writer.write(runs[index], index);
  out += '}';
  return out;
}

}  // namespace zel::styledtext
