// What the entity encoders write for one character that they do not copy as it is: shared by the
// encoders over code points and those over UTF-8 bytes, so that both write the same.
#pragma once

#include <string>

namespace zel::strings::escapes {

constexpr bool isMarkupCharacter(char32_t c) {
  return c == U'"' || c == U'&' || c == U'\'' || c == U'<' || c == U'>';
}

// Both encoders keep tab, line feed and carriage return and drop every other control.
constexpr bool isDroppedControl(char32_t c) {
  return c < 32 && c != 9 && c != 10 && c != 13;
}

// The HTML encoder's output for any character outside a plain run.
void appendHtmlEscape(std::string& out, char32_t c, bool markupAsIs);

// The XML encoder's output for an ASCII character outside a plain run.
void appendXmlEscape(std::string& out, char32_t c, bool namedApostrophe);
void appendXmlEscape(std::u32string& out, char32_t c, bool namedApostrophe);

}  // namespace zel::strings::escapes
