// The StyledText class extension "RTFDataZEL(SkipParagraphs as boolean = false) as string": reading
// it writes the styled text as RTF, assigning RTF to it rebuilds the styled text.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring RTFDataZEL_Getter(REALobject styledText, RBBoolean skipParagraphs) noexcept;
// SkipParagraphs plays no part when reading RTF.
void RTFDataZEL_Setter(REALobject styledText, RBBoolean skipParagraphs, REALstring rtf) noexcept;

}  // namespace zel::adapters
