// RTF to styled text: a single-pass byte scanner with a stack of group states. It understands the
// control words our writer produces and a few common ones, skips the rest, and never fails:
// malformed input gives whatever runs were recognised.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zel::styledtext {

// Bytes reserved up front for text waiting to become a run: most runs fit without regrowing.
inline constexpr std::size_t kPendingTextReserve = 10000;

// The style a run is created with.
struct RunStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;
  std::int64_t size = 0;
  std::uint32_t textColor = 0;  // (red << 16) | (green << 8) | blue
  std::string_view fontName;    // UTF-8; valid only during the call that receives it
};

// A run's text: bytes in a host text encoding. Runs from "\u" hold one UTF-16 unit as two bytes in
// native order, tagged encoding::kUTF16.
struct RunText {
  std::string_view bytes;
  std::uint32_t encoding;
};

// Where the reader builds the styled text; the host side implements it over the host's objects.
class StyledTextSink {
 public:
  virtual ~StyledTextSink() = default;

  // Removes every run (the host removes them from the last one down).
  virtual void clear() = 0;
  virtual std::int64_t paragraphCount() = 0;
  // Makes a run with this style and text and appends it; the text is never empty.
  virtual void appendStyleRun(const RunStyle& style, const RunText& text) = 0;
  virtual void setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) = 0;
};

// Clears the sink, then appends the runs read from the RTF bytes. For each run appended the sink
// sees paragraphCount, appendStyleRun, paragraphCount and, when the count changed, one
// setParagraphAlignment for the first paragraph the run opened.
void readRtf(std::string_view rtf, StyledTextSink& sink);

}  // namespace zel::styledtext
