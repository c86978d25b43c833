#include "strings/transfer_encodings_adapters.h"

#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "strings/transfer_encodings.h"

namespace zel::adapters {

REALstring EncodingToHexZEL(REALstring s) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kASCII, &strings::encodeHex, s);
}

REALstring DecodingFromHexZEL(REALstring s) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(OnFailure::emptyIfOutOfMemory, [&] {
    HostText text(s);
    return buildString(strings::decodeHex(text.ascii()), encoding::kNone);
  });
}

REALstring EncodingToURLZEL(REALstring s) noexcept {
  return EncodingToURLZEL_Options(s, 0);
}

REALstring EncodingToURLZEL_Options(REALstring s, RBInteger options) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kASCII,
      [&](std::string_view bytes) { return strings::encodeUrl(bytes, options); }, s);
}

REALstring DecodingFromURLZEL(REALstring s) noexcept {
  return DecodingFromURLZEL_Options(s, 0);
}

REALstring DecodingFromURLZEL_Options(REALstring s, RBInteger options) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kNone,
      [&](std::string_view bytes) { return strings::decodeUrl(bytes, options); }, s);
}

REALstring EncodingToQuotedPrintableZEL(REALstring s, RBInteger lineLength) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kASCII,
      [&](std::string_view bytes) { return strings::encodeQuotedPrintable(bytes, lineLength); }, s);
}

REALstring DecodingFromQuotedPrintableZEL(REALstring s) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kASCII,
                       &strings::decodeQuotedPrintable, s);
}

REALstring EncodeEmailSubjectZEL(REALstring s) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(OnFailure::emptyIfOutOfMemory, [&] {
    HostText text(s);
    const auto encoded = strings::encodeEmailSubject(text.utf8());
    return encoded ? buildString(*encoded, encoding::kASCII) : shareString(s);
  });
}

}  // namespace zel::adapters
