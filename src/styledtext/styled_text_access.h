// The only code that touches the host's StyledText, StyleRun and Paragraph objects: a snapshot of a
// styled text as run records, and the operations that build one run by run, also as the RTF
// reader's sink. Nothing here raises;
// failed host calls become debug-log lines and the work goes on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/host_types.h"
#include "styledtext/rtf_reader.h"
#include "styledtext/style_run.h"

namespace zel::styledtext {

// ---- reading

// Runs in order with their characters as UTF-16 and their font as UTF-8; unless skipParagraphs,
// each run carries the alignment of the paragraph that covers its midpoint. Empty for a nil
// object, no runs or no paragraphs.
std::vector<StyleRunRecord> ReadStyleRuns(REALobject styledText, bool skipParagraphs);

RBInteger ParagraphCount(REALobject styledText) noexcept;
RBInteger StyleRunCount(REALobject styledText) noexcept;

// Font names compared the host's way (the writer's test for a font change).
bool SameFontName(std::string_view a, std::string_view b) noexcept;

// ---- building

REALobject NewStyleRun() noexcept;  // +1, nil on failure
void StyleRunSetBold(REALobject run, bool value) noexcept;
void StyleRunSetItalic(REALobject run, bool value) noexcept;
void StyleRunSetUnderline(REALobject run, bool value) noexcept;
void StyleRunSetSize(REALobject run, RBInteger value) noexcept;
void StyleRunSetTextColor(REALobject run, RBColor value) noexcept;
// "Font", falling back to "FontName" where the host names the property that way.
void StyleRunSetFontName(REALobject run, REALstring name) noexcept;
void StyleRunSetText(REALobject run, REALstring text) noexcept;

// Gives `run` its text and appends it; the caller's reference to the run is used up (and cleared)
// in every case. A non-negative alignment goes to the first paragraph the run opened, if any.
// Returns the paragraph count after the append.
RBInteger StyledTextAddStyleRun(REALstring text, REALobject styledText, REALobject& run,
                                RBInteger alignment) noexcept;
// The two front ends. Both use up the run; they answer the new paragraph count, or nothing when
// the run was dropped (an empty buffer, a zero unit).
std::optional<RBInteger> StyledTextAddBufferedRun(std::string& buffer, std::uint32_t encoding,
                                                  REALobject styledText, REALobject& run,
                                                  RBInteger alignment) noexcept;
std::optional<RBInteger> StyledTextAddUnitRun(char16_t unit, REALobject styledText, REALobject& run,
                                              RBInteger alignment) noexcept;

void StyledTextSetParagraphAlignment(REALobject styledText, RBInteger index,
                                     RBInteger alignment) noexcept;
// Removes every run, last first.
void StyledTextClear(REALobject styledText) noexcept;

// The reader's building steps, carried out on a host StyledText. The paragraph count that the
// last append reported is remembered, so each run costs the host two counts, not four.
class HostStyledTextSink final : public StyledTextSink {
 public:
  explicit HostStyledTextSink(REALobject styledText);

  void clear() override;
  std::int64_t paragraphCount() override;
  void appendStyleRun(const RunStyle& style, const RunText& text) override;
  void setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) override;

 private:
  REALobject styledText_;
  std::string text_;
  std::optional<std::int64_t> paragraphCount_;
};

}  // namespace zel::styledtext
