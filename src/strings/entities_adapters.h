// Registered functions that escape text for HTML and XML, decode entity references and tell
// whether a string can go into markup unchanged.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring EncodingToHTMLZEL(REALstring s, RBInteger options) noexcept;
REALstring DecodingFromHTMLZEL(REALstring s) noexcept;
REALstring EncodingToXMLZEL(REALstring s, RBInteger options) noexcept;
REALstring DecodingFromXMLZEL(REALstring s) noexcept;
RBBoolean StringIsHTMLreadyZEL(REALstring s) noexcept;
RBBoolean StringIsXMLreadyZEL(REALstring s) noexcept;

}  // namespace zel::adapters
