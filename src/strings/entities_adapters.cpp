#include "strings/entities_adapters.h"

#include <cstdint>
#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "framework/exceptions.h"
#include "framework/host_api.h"
#include "strings/entities.h"

namespace zel::adapters {
namespace {

REALstring decodedEntities(OnFailure policy, REALstring s) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(policy, [&] {
    HostText text(s);
    return buildString(std::u32string_view(strings::decodeEntities(text.utf32())));
  });
}

// Only these encodings store markup characters as single ASCII bytes.
constexpr bool hasAsciiBytes(std::uint32_t stringEncoding) {
  using namespace encoding;
  return stringEncoding == kASCII || stringEncoding == kMacRoman ||
         stringEncoding == kWindowsLatin1 || stringEncoding == kUTF8;
}

RBBoolean markupReady(OnFailure policy, REALstring s) noexcept {
  if (s == nullptr) return true;
  return guarded(policy, [&]() -> RBBoolean {
    if (!hasAsciiBytes(host::REALGetStringEncoding(s))) return false;
    const HostStringBytes bytes(s);
    return strings::isMarkupReady(bytes.view());
  });
}

// Text stored as UTF-8 or ASCII is encoded from its own bytes, which the UTF-32 view only
// decodes. Other text keeps the host's conversion to UTF-32: its UTF-8 conversion may keep byte
// order marks inside the text that our decoder would drop.
bool encodesFromBytes(const HostText& text) {
  return text.encoding() == encoding::kUTF8 || text.encoding() == encoding::kASCII;
}

}  // namespace

// The encoders hand back the caller's own string when nothing needs escaping.
REALstring EncodingToHTMLZEL(REALstring s, RBInteger options) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(OnFailure::raise, [&] {
    HostText text(s);
    const auto encoded = encodesFromBytes(text)
                             ? strings::encodeHtmlEntities(text.utf8(), options)
                             : strings::encodeHtmlEntities(text.utf32(), options);
    return encoded ? buildString(*encoded, encoding::kASCII) : shareString(s);
  });
}

REALstring EncodingToXMLZEL(REALstring s, RBInteger options) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(OnFailure::raise, [&] {
    HostText text(s);
    if (encodesFromBytes(text)) {
      const auto encoded = strings::encodeXmlEntities(text.utf8(), options);
      return encoded ? buildString(*encoded, encoding::kUTF8) : shareString(s);
    }
    const auto encoded = strings::encodeXmlEntities(text.utf32(), options);
    return encoded ? buildString(std::u32string_view(*encoded)) : shareString(s);
  });
}

REALstring DecodingFromHTMLZEL(REALstring s) noexcept {
  return decodedEntities(OnFailure::raise, s);
}

REALstring DecodingFromXMLZEL(REALstring s) noexcept {
  return decodedEntities(OnFailure::raise, s);
}

RBBoolean StringIsHTMLreadyZEL(REALstring s) noexcept {
  return markupReady(OnFailure::raise, s);
}

RBBoolean StringIsXMLreadyZEL(REALstring s) noexcept {
  return markupReady(OnFailure::raise, s);
}

}  // namespace zel::adapters
