#include "styledtext/rtf_adapters.h"

#include <string>

#include "bridge/adapter_support.h"
#include "bridge/host_string_bytes.h"
#include "framework/exceptions.h"
#include "styledtext/rtf_reader.h"
#include "styledtext/rtf_writer.h"
#include "styledtext/styled_text_access.h"

namespace zel::adapters {

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
    styledtext::HostStyledTextSink sink(styledText);
    styledtext::readRtf(bytes.view(), sink);
  });
}

}  // namespace zel::adapters
