#include "styledtext/rtf_adapters.h"

#include <cstring>
#include <optional>
#include <string>

#include "bridge/adapter_support.h"
#include "bridge/host_string_bytes.h"
#include "framework/debug_log.h"
#include "framework/exceptions.h"
#include "styledtext/code_page_table.h"
#include "styledtext/rtf_reader.h"
#include "styledtext/rtf_writer.h"
#include "styledtext/styled_text_access.h"

namespace zel::adapters {
namespace {

// The reader's building steps, carried out on a host StyledText. The paragraph count that the
// last append reported is remembered, so each run costs the host two counts, not four.
class HostStyledTextSink final : public styledtext::StyledTextSink {
 public:
  explicit HostStyledTextSink(REALobject styledText) : styledText_(styledText) {
    text_.reserve(styledtext::kPendingTextReserve);
  }

  void clear() override {
    styledtext::StyledTextClear(styledText_);
    paragraphCount_.reset();
  }

  std::int64_t paragraphCount() override {
    if (!paragraphCount_) paragraphCount_ = styledtext::ParagraphCount(styledText_);
    return *paragraphCount_;
  }

  void appendStyleRun(const styledtext::RunStyle& style, const styledtext::RunText& text) override {
    std::optional<RBInteger> after;
    if (text.encoding == encoding::kUTF16 && text.bytes.size() == sizeof(char16_t)) {
      char16_t unit = 0;
      std::memcpy(&unit, text.bytes.data(), sizeof unit);
      REALobject run = makeRun(style);
      after = styledtext::StyledTextAddUnitRun(unit, styledText_, run, kKeepAlignment);
    } else {
      // Copied before the run exists, so a failed allocation cannot strand it.
      text_.assign(text.bytes);
      REALobject run = makeRun(style);
      after = styledtext::StyledTextAddBufferedRun(text_, text.encoding, styledText_, run,
                                                   kKeepAlignment);
    }
    if (after) paragraphCount_ = *after;
  }

  void setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) override {
    debugLogInt64Pair("SetParagraphAlignment", paragraph, alignment);
    styledtext::StyledTextSetParagraphAlignment(styledText_, paragraph, alignment);
  }

 private:
  // The reader decides about alignment itself, through setParagraphAlignment.
  static constexpr RBInteger kKeepAlignment = -1;

  static REALobject makeRun(const styledtext::RunStyle& style) {
    REALobject run = styledtext::NewStyleRun();
    styledtext::StyleRunSetBold(run, style.bold);
    styledtext::StyleRunSetItalic(run, style.italic);
    styledtext::StyleRunSetUnderline(run, style.underline);
    styledtext::StyleRunSetSize(run, style.size);
    styledtext::StyleRunSetTextColor(run, style.textColor);
    const OwnedString font(buildString(style.fontName, encoding::kUTF8));
    styledtext::StyleRunSetFontName(run, font.get());
    return run;
  }

  REALobject styledText_;
  std::string text_;
  std::optional<std::int64_t> paragraphCount_;
};

}  // namespace

REALstring RTFDataZEL_Getter(REALobject styledText, RBBoolean skipParagraphs) noexcept {
  return guarded(OnFailure::raise, [&]() -> REALstring {
    const auto runs = styledtext::ReadStyleRuns(styledText, skipParagraphs != 0);
    const std::string rtf =
        styledtext::writeRtf(runs, {skipParagraphs != 0, &styledtext::SameFontName});
    return buildString(rtf, encoding::kUTF8);
  });
}

void RTFDataZEL_Setter(REALobject styledText, RBBoolean, REALstring rtf) noexcept {
  guarded(OnFailure::raise, [&] {
    const HostStringBytes bytes(rtf);
    HostStyledTextSink sink(styledText);
    styledtext::readRtf(bytes.view(), sink);
  });
}

}  // namespace zel::adapters
