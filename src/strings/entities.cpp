#include "strings/entities.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "strings/entity_escapes.h"
#include "strings/word_scan.h"

namespace zel::strings {

using escapes::isDroppedControl;
using escapes::isMarkupCharacter;

namespace {

// Headroom beyond the expected output, so that a text with a few entities never regrows.
constexpr std::size_t kOutputSlack = 4096;
// The most UTF-8 bytes one character can take.
constexpr std::size_t kMaxUtf8BytesPerCharacter = 4;

// Printable ASCII other than the markup characters: the encoders copy these in runs.
constexpr auto kPlainAscii = [] {
  std::array<bool, 128> plain{};
  for (char32_t c = 32; c < 128; ++c) plain[c] = !isMarkupCharacter(c);
  return plain;
}();

std::u32string_view withoutByteOrderMark(std::u32string_view text) {
  if (!text.empty() && (text.front() == 0xFEFF || text.front() == 0xFFFE)) text.remove_prefix(1);
  return text;
}

// The encoders' quick test reads only up to the first NUL, and ignores controls.
template <typename Predicate>
bool needsEscaping(std::u32string_view text, Predicate escaped) {
  for (const char32_t c : text) {
    if (c == 0) return false;
    if (escaped(c)) return true;
  }
  return false;
}

template <typename Predicate>
std::size_t plainRunLength(std::u32string_view text, Predicate copiedAsIs) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, copiedAsIs) - text.begin());
}

// --- Code lookup: the non-ASCII rows ascend, so a binary search finds the same first row.

constexpr std::size_t kFirstNonAsciiRow = static_cast<std::size_t>(
    std::ranges::find_if(kHtmlEntities, [](const EntityEntry& e) { return e.code >= 128; }) -
    kHtmlEntities.begin());

static_assert(std::adjacent_find(kHtmlEntities.begin() + kFirstNonAsciiRow, kHtmlEntities.end(),
                                 [](const EntityEntry& a, const EntityEntry& b) {
                                   return a.code >= b.code;
                                 }) == kHtmlEntities.end(),
              "non-ASCII rows must ascend strictly");

// --- Name lookup: every prefix of every name, mapped to the first row that has it.

struct NameKey {
  std::uint64_t key;
  std::uint16_t row;
};

// Names are at most 8 ASCII characters without NUL, so one byte per character packs them
// into a word without collisions.
constexpr std::uint64_t withCharacter(std::uint64_t key, std::size_t position, char32_t c) {
  return key | (std::uint64_t{c} << (56 - 8 * position));
}

constexpr std::uint64_t packName(std::string_view name) {
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < name.size(); ++i)
    key = withCharacter(key, i, static_cast<char32_t>(name[i]));
  return key;
}

constexpr bool byKeyThenRow(const NameKey& a, const NameKey& b) {
  return a.key < b.key || (a.key == b.key && a.row < b.row);
}

constexpr auto kWholeNameIndex = [] {
  std::array<NameKey, kHtmlEntities.size()> index{};
  for (std::size_t row = 0; row < kHtmlEntities.size(); ++row) {
    index[row] = {packName(kHtmlEntities[row].name), static_cast<std::uint16_t>(row)};
  }
  std::ranges::sort(index, byKeyThenRow);
  return index;
}();

// Packed keys order names as text does, a prefix before its extensions. So the names in key order
// list every distinct prefix in key order, each name adding the prefixes longer than what it
// shares with the name before it; and the names that have a prefix follow the one that added it.
// This keeps the index cheap to build at compile time, with no sort of all prefixes.
constexpr std::string_view nameInKeyOrder(std::size_t i) {
  return kHtmlEntities[kWholeNameIndex[i].row].name;
}

constexpr std::size_t sharedLength(std::string_view a, std::string_view b) {
  std::size_t n = 0;
  while (n < a.size() && n < b.size() && a[n] == b[n]) ++n;
  return n;
}

constexpr std::size_t firstNewPrefixLength(std::size_t i) {
  return i == 0 ? 1 : sharedLength(nameInKeyOrder(i - 1), nameInKeyOrder(i)) + 1;
}

constexpr std::uint16_t firstRowWithPrefix(std::size_t i, std::string_view prefix) {
  std::uint16_t row = kWholeNameIndex[i].row;
  for (std::size_t j = i + 1;
       j < kWholeNameIndex.size() && nameInKeyOrder(j).substr(0, prefix.size()) == prefix; ++j) {
    row = std::min(row, kWholeNameIndex[j].row);
  }
  return row;
}

constexpr std::size_t kDistinctPrefixes = [] {
  std::size_t count = 0;
  for (std::size_t i = 0; i < kWholeNameIndex.size(); ++i) {
    count += nameInKeyOrder(i).size() + 1 - firstNewPrefixLength(i);
  }
  return count;
}();

constexpr auto kPrefixIndex = [] {
  std::array<NameKey, kDistinctPrefixes> index{};
  std::size_t n = 0;
  for (std::size_t i = 0; i < kWholeNameIndex.size(); ++i) {
    const std::string_view name = nameInKeyOrder(i);
    for (std::size_t length = firstNewPrefixLength(i); length <= name.size(); ++length) {
      const std::string_view prefix = name.substr(0, length);
      index[n++] = {packName(prefix), firstRowWithPrefix(i, prefix)};
    }
  }
  return index;
}();

static_assert(std::ranges::adjacent_find(kPrefixIndex, std::ranges::greater_equal{},
                                         &NameKey::key) == kPrefixIndex.end(),
              "prefix keys must ascend strictly");

static_assert(std::ranges::adjacent_find(kWholeNameIndex, {}, &NameKey::key) ==
                  kWholeNameIndex.end(),
              "entity names must be unique");

const EntityEntry* lookUp(std::span<const NameKey> index, std::uint64_t key) {
  const auto it = std::ranges::lower_bound(index, key, {}, &NameKey::key);
  return it != index.end() && it->key == key ? &kHtmlEntities[it->row] : nullptr;
}

// --- Decoding

constexpr std::size_t kNotAReference = 0;

std::optional<std::uint32_t> hexDigit(char32_t c) {
  if (c >= U'0' && c <= U'9') return c - U'0';
  if (c >= U'a' && c <= U'f') return c - U'a' + 10;
  if (c >= U'A' && c <= U'F') return c - U'A' + 10;
  return std::nullopt;
}

// `digits` follows the "#". The name is at most 8 characters, so the value cannot overflow.
std::int32_t numericReferenceValue(std::u32string_view digits) {
  bool negative = false;
  std::uint32_t value = 0;
  if (!digits.empty() && digits.front() == U'x') {
    for (const char32_t c : digits.substr(1)) {
      const char32_t low = c & 0xFFFF;  // only the low 16 bits take part
      if (low == U'-') {
        negative = true;
      } else if (const auto digit = hexDigit(low)) {
        value = value * 16 + *digit;
      } else {
        break;
      }
    }
  } else {
    for (const char32_t c : digits) {
      const char32_t low = c & 0xFF;  // only the low 8 bits take part
      if (low == U'-') {
        negative = true;
      } else if (low >= U'0' && low <= U'9') {
        value = value * 10 + (low - U'0');
      } else {
        break;
      }
    }
  }
  const auto signedValue = static_cast<std::int32_t>(value);
  return negative ? -signedValue : signedValue;
}

// Decodes the reference that follows an "&". Returns how many characters it takes from the "&"
// on (its ";" included, present or not), or kNotAReference.
std::size_t decodeReference(std::u32string_view afterAmpersand, std::u32string& out) {
  const auto window = afterAmpersand.substr(0, kLongestEntityName + 1);
  const std::size_t count = std::min(window.find(U';'), window.size());
  if (count == 0 || count > kLongestEntityName) return kNotAReference;
  const auto name = window.substr(0, count);
  if (const EntityEntry* entity = findHtmlEntityByNamePrefix(name)) {
    out += entity->code;
    return count + 2;
  }
  if (name.front() != U'#') return kNotAReference;
  const std::int32_t value = numericReferenceValue(name.substr(1));
  if (value < 1) return kNotAReference;
  out += static_cast<char32_t>(value);
  return count + 2;
}

// --- Encoding

void appendReference(std::string& out, std::string_view name) {
  out += '&';
  out += name;
  out += ';';
}

void appendDecimalReference(std::string& out, char32_t c) {
  std::array<char, 12> digits{};
  // Formatted as a signed 32-bit number, so code units past 0x7FFFFFFF come out negative.
  const auto end = std::to_chars(digits.begin(), digits.end(), static_cast<std::int32_t>(c)).ptr;
  out += "&#";
  out.append(digits.begin(), end);
  out += ';';
}

void appendReference(std::u32string& out, std::string_view name) {
  out += U'&';
  out.append(name.begin(), name.end());
  out += U';';
}

template <class Text>
void appendXmlEscapeTo(Text& out, char32_t c, bool namedApostrophe) {
  if (c == U'\'' && !namedApostrophe) {
    appendReference(out, "#39");
  } else if (isMarkupCharacter(c)) {
    appendReference(out, std::ranges::find(kXmlEntities, c, &EntityEntry::code)->name);
  } else if (!isDroppedControl(c)) {
    out += static_cast<typename Text::value_type>(c);
  }
}

}  // namespace

void escapes::appendHtmlEscape(std::string& out, char32_t c, bool markupAsIs) {
  if (c == U'\'' && !markupAsIs) {
    appendReference(out, "#39");
  } else if (const EntityEntry* entity = findHtmlEntityByCode(c, markupAsIs)) {
    appendReference(out, entity->name);
  } else if (c >= 128) {
    appendDecimalReference(out, c);
  } else if (!isDroppedControl(c)) {
    out += static_cast<char>(c);
  }
}

void escapes::appendXmlEscape(std::string& out, char32_t c, bool namedApostrophe) {
  appendXmlEscapeTo(out, c, namedApostrophe);
}

void escapes::appendXmlEscape(std::u32string& out, char32_t c, bool namedApostrophe) {
  appendXmlEscapeTo(out, c, namedApostrophe);
}

const EntityEntry* findHtmlEntityByCode(char32_t code, bool nonAsciiOnly) {
  const auto all = std::span(kHtmlEntities);
  if (code < 128) {
    if (nonAsciiOnly) return nullptr;
    const auto rows = all.first(kFirstNonAsciiRow);
    const auto it = std::ranges::find(rows, code, &EntityEntry::code);
    return it != rows.end() ? &*it : nullptr;
  }
  const auto rows = all.subspan(kFirstNonAsciiRow);
  const auto it = std::ranges::lower_bound(rows, code, {}, &EntityEntry::code);
  return it != rows.end() && it->code == code ? &*it : nullptr;
}

const EntityEntry* findHtmlEntityByNamePrefix(std::u32string_view name) {
  if (name.empty() || name.size() > kLongestEntityName) return nullptr;
  std::uint64_t key = 0;
  std::size_t length = 0;
  for (; length < name.size() && name[length] != 0; ++length) {
    if (name[length] > 127) return nullptr;
    key = withCharacter(key, length, name[length]);
  }
  if (length == name.size()) return lookUp(kPrefixIndex, key);
  // A NUL can only stand where a name ends (its terminator), and only NULs may follow it.
  const bool onlyNulsFollow =
      std::ranges::all_of(name.substr(length), [](char32_t c) { return c == 0; });
  return length > 0 && onlyNulsFollow ? lookUp(kWholeNameIndex, key) : nullptr;
}

std::optional<std::string> encodeHtmlEntities(std::u32string_view text, std::int64_t options) {
  if (text.empty()) return std::string{};
  if (!needsEscaping(text, [](char32_t c) { return c >= 128 || isMarkupCharacter(c); })) {
    return std::nullopt;
  }
  const bool markupAsIs = (options & kEntityOptionBit) != 0;
  text = withoutByteOrderMark(text);
  std::string out;
  out.reserve(kMaxUtf8BytesPerCharacter * text.size() + kOutputSlack);
  const auto copiedAsIs = [markupAsIs](char32_t c) {
    return c < 128 && (markupAsIs ? c >= 32 : kPlainAscii[c]);
  };
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t run = plainRunLength(text.substr(i), copiedAsIs);
    if (run > 0) {
      const std::size_t written = out.size();
      out.resize(written + run);
      std::transform(&text[i], &text[i] + run, &out[written],
                     [](char32_t c) { return static_cast<char>(c); });
      i += run;
      continue;
    }
    escapes::appendHtmlEscape(out, text[i++], markupAsIs);
  }
  return out;
}

std::optional<std::u32string> encodeXmlEntities(std::u32string_view text, std::int64_t options) {
  if (text.empty()) return std::u32string{};
  if (!needsEscaping(text, isMarkupCharacter)) return std::nullopt;
  const bool namedApostrophe = (options & kEntityOptionBit) != 0;
  text = withoutByteOrderMark(text);
  std::u32string out;
  out.reserve(text.size() + kOutputSlack);
  const auto copiedAsIs = [](char32_t c) { return c >= 128 || kPlainAscii[c]; };
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t run = plainRunLength(text.substr(i), copiedAsIs);
    out.append(text.substr(i, run));
    i += run;
    if (i == text.size()) break;
    escapes::appendXmlEscape(out, text[i++], namedApostrophe);
  }
  return out;
}

std::u32string decodeEntities(std::u32string_view text) {
  text = withoutByteOrderMark(text);
  std::u32string out;
  out.reserve(text.size() + kOutputSlack);
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t ampersand = std::min(text.find(U'&', i), text.size());
    out.append(text.substr(i, ampersand - i));
    if (ampersand == text.size()) break;
    const std::size_t taken = decodeReference(text.substr(ampersand + 1), out);
    if (taken == kNotAReference) {
      out += U'&';
      i = ampersand + 1;
    } else {
      i = ampersand + taken;
    }
  }
  return out;
}

bool isMarkupReady(std::string_view bytes) {
  using namespace word_scan;
  for (; bytes.size() >= kWordBytes; bytes.remove_prefix(kWordBytes)) {
    const std::uint64_t word = load(bytes.data());
    const std::uint64_t unready = (word & kHighBits) | bytesEqualTo(word, 0) |
                                  bytesEqualTo(word, '"') | bytesEqualTo(word, '&') |
                                  bytesEqualTo(word, '\'') | bytesEqualTo(word, '<') |
                                  bytesEqualTo(word, '>');
    if (unready != 0) return false;
  }
  return std::ranges::none_of(bytes, [](char c) {
    const auto b = static_cast<unsigned char>(c);
    return b == 0 || b >= 128 || isMarkupCharacter(b);
  });
}

}  // namespace zel::strings
