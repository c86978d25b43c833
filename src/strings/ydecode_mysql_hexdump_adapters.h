// Registered functions for bare yEnc bodies, MySQL backslash escapes and hex dumps.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALobject yDecodeMemoryZEL(REALobject data) noexcept;
REALstring yDecodeStringZEL(REALstring data) noexcept;
REALstring DecodingFromMySQLZEL(REALstring s) noexcept;
REALstring HexstringZEL(REALstring input, RBInteger hexLength, RBInteger lineLength,
                        REALstring lineStart, REALstring lineEnd, REALstring spacer,
                        REALstring filler) noexcept;

}  // namespace zel::adapters
