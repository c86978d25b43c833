#include "strings/tag_stripping.h"

#include <cstddef>
#include <cstdint>

namespace zel::strings {
namespace {

constexpr bool isAsciiLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Bytes below 33 read as signed (blanks, controls and everything from 0x80 up), and ( ) , ;
constexpr bool isSqlSeparator(char c) {
  return static_cast<signed char>(c) < 33 || c == '(' || c == ')' || c == ',' || c == ';';
}

// Compares with the 0x20 bit ignored; `upperWord` is in upper case.
bool spellsIgnoringCase(std::string_view bytes, std::string_view upperWord) {
  for (std::size_t i = 0; i < upperWord.size(); ++i) {
    if ((static_cast<unsigned char>(bytes[i]) & ~0x20u) !=
        static_cast<unsigned char>(upperWord[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::string removeHtmlTags(std::string_view text, std::string_view replacement) {
  replacement = replacement.substr(0, replacement.find('\0'));
  std::string out;
  out.reserve(text.size() + 10);
  std::int64_t depth = 0;
  bool inQuote = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inQuote) {  // only ever set inside a tag
      inQuote = c != '"';
      continue;
    }
    if (c == '"' && depth > 0) {
      inQuote = true;
      continue;
    }
    if (c == '<') {
      const char next = i + 1 < text.size() ? text[i + 1] : '\0';
      if (isAsciiLetter(next) || next == '/') {
        ++depth;
        continue;
      }
    }
    if (c == '>') {  // also a stray one outside any tag is dropped
      if (depth > 0) --depth;
      continue;
    }
    if (depth > 0) {
      out += replacement;
    } else if (c == '\0') {
      break;
    } else {
      out += c;
    }
  }
  return out;
}

std::string replaceSqlBooleans(std::string_view sql) {
  std::string out;
  out.reserve(sql.size() + 10);
  bool inSingle = false;
  bool inDouble = false;
  std::size_t run = 0;
  for (std::size_t p = 0; p < sql.size(); ++p) {
    const char c = sql[p];
    if (c == '\0') break;
    if (c == '\'' && !inDouble) inSingle = !inSingle;
    if (c == '"' && !inSingle) inDouble = !inDouble;
    run = isSqlSeparator(c) ? 0 : run + 1;
    if (!inSingle && !inDouble && run == 1 && sql.size() - p >= 6) {
      const auto word = sql.substr(p);
      if (spellsIgnoringCase(word, "FALSE") && isSqlSeparator(word[5])) {
        out += '0';
        p += 4;
        continue;
      }
      if (spellsIgnoringCase(word, "TRUE") && isSqlSeparator(word[4])) {
        out += '1';
        p += 3;
        continue;
      }
    }
    out += c;
  }
  return out;
}

}  // namespace zel::strings
