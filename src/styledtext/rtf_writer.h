// Styled text to compact RTF: one header with font and colour tables, then each run as the control
// words that changed since the run before it, followed by its escaped characters.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "styledtext/style_run.h"

namespace zel::styledtext {

// Decides whether a run's font differs from the one last written. The host compares its own way
// (the adapter passes that comparison); both names are UTF-8 and never empty.
using FontNamesMatch = bool (*)(std::string_view a, std::string_view b);

inline bool sameFontBytes(std::string_view a, std::string_view b) {
  return a == b;
}

struct RtfWriteOptions {
  bool skipParagraphs = false;  // treat every run as default-aligned
  FontNamesMatch sameFont = &sameFontBytes;
};

// The RTF bytes (ASCII apart from font names, which stay raw UTF-8). Empty exactly when there are
// no runs, which the caller turns into the nil string.
std::string writeRtf(std::span<const StyleRunRecord> runs, const RtfWriteOptions& options = {});

}  // namespace zel::styledtext
