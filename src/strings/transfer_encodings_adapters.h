// Registered functions for hexadecimal, URL, quoted-printable and mail-subject encodings.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring EncodingToHexZEL(REALstring s) noexcept;
REALstring DecodingFromHexZEL(REALstring s) noexcept;
REALstring EncodingToURLZEL(REALstring s) noexcept;
REALstring EncodingToURLZEL_Options(REALstring s, RBInteger options) noexcept;
REALstring DecodingFromURLZEL(REALstring s) noexcept;
REALstring DecodingFromURLZEL_Options(REALstring s, RBInteger options) noexcept;
REALstring EncodingToQuotedPrintableZEL(REALstring s, RBInteger lineLength) noexcept;
REALstring DecodingFromQuotedPrintableZEL(REALstring s) noexcept;
REALstring EncodeEmailSubjectZEL(REALstring s) noexcept;

}  // namespace zel::adapters
