// The native picture of a styled text: one record per style run, and the paragraph ranges that
// hand their alignment to the runs.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zel::styledtext {

// Paragraph alignment as the host numbers it.
enum Alignment : std::int64_t {
  kAlignDefault = 0,
  kAlignLeft = 1,
  kAlignCentre = 2,
  kAlignRight = 3,
};

struct StyleRunRecord {
  bool bold = false;
  bool underline = false;
  bool italic = false;
  std::uint32_t textColor = 0;  // 0xRRGGBB
  std::int64_t size = 0;        // points
  std::int64_t alignment = kAlignDefault;
  // Offsets and lengths count characters the way the host's Len does (code points).
  std::int64_t startPos = 0;
  std::int64_t length = 0;
  std::int64_t midPos = 0;
  std::optional<std::string> font;  // UTF-8; nullopt when the host handed over no font at all
  std::u16string text;
};

struct ParagraphRange {
  std::int64_t startPos = 0;
  std::int64_t endPos = 0;  // both ends belong to the paragraph
  std::int64_t alignment = kAlignDefault;
};

// Each paragraph gives its alignment to every run whose midpoint it covers; paragraphs come in
// order, so where two ranges touch, the later one wins. Runs read from a text come with rising
// midpoints, which lets each paragraph find its runs by binary search.
inline void claimParagraphAlignments(std::span<StyleRunRecord> runs,
                                     std::span<const ParagraphRange> paragraphs) {
  const auto byMidPos = [](const StyleRunRecord& a, const StyleRunRecord& b) {
    return a.midPos < b.midPos;
  };
  const bool sorted = std::is_sorted(runs.begin(), runs.end(), byMidPos);
  for (const ParagraphRange& paragraph : paragraphs) {
    auto first = runs.begin();
    auto last = runs.end();
    if (sorted) {
      first = std::partition_point(
          first, last, [&](const StyleRunRecord& run) { return run.midPos < paragraph.startPos; });
      last = std::partition_point(
          first, last, [&](const StyleRunRecord& run) { return run.midPos <= paragraph.endPos; });
    }
    for (auto run = first; run != last; ++run) {
      if (run->midPos >= paragraph.startPos && run->midPos <= paragraph.endPos) {
        run->alignment = paragraph.alignment;
      }
    }
  }
}

}  // namespace zel::styledtext
