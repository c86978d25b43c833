// HTML and XML entity escaping, entity decoding and the markup-readiness test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "strings/entity_table.h"

namespace zel::strings {

// Option bit 0 of EncodingToHTMLZEL: leave the five markup characters alone.
// Option bit 0 of EncodingToXMLZEL: write the apostrophe as "&apos;" rather than "&#39;".
inline constexpr std::int64_t kEntityOptionBit = 1;

// ASCII bytes; std::nullopt when nothing needs escaping (the caller's own string stands).
// An empty result means nil.
std::optional<std::string> encodeHtmlEntities(std::u32string_view text, std::int64_t options);

// Code points; std::nullopt when nothing needs escaping. An empty result means nil.
std::optional<std::u32string> encodeXmlEntities(std::u32string_view text, std::int64_t options);

// The same encoders over UTF-8 bytes, read as the plug-in's UTF-8 decoder reads them: up to the
// first malformed sequence, without U+FEFF and U+FFFE. The results equal those of the encoders
// above over the decoded code points; the XML result is UTF-8.
std::optional<std::string> encodeHtmlEntities(std::string_view utf8, std::int64_t options);
std::optional<std::string> encodeXmlEntities(std::string_view utf8, std::int64_t options);

// Named (HTML names, prefix-matched) and numeric references back to code points, one pass.
// An empty result means nil.
std::u32string decodeEntities(std::u32string_view text);

// True when no byte is NUL, a markup character or non-ASCII.
bool isMarkupReady(std::string_view bytes);

// The first row of kHtmlEntities with this code, searching from the top or, with
// nonAsciiOnly, from the first row whose code is 128 or more. Null when none.
const EntityEntry* findHtmlEntityByCode(char32_t code, bool nonAsciiOnly);

// The first row of kHtmlEntities whose name, followed by zero characters, begins with `name`
// (1 to kLongestEntityName characters). Null when none.
const EntityEntry* findHtmlEntityByNamePrefix(std::u32string_view name);

}  // namespace zel::strings
