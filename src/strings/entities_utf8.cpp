// The entity encoders over UTF-8: plain runs are found a vector block at a time and copied whole;
// only the bytes that need work are decoded, by the decoder's own sequence rules.
#include <algorithm>
#include <cstdint>
#include <span>

#include "strings/entities.h"
#include "strings/entity_escapes.h"
#include "text/byte_class.h"
#include "text/utf8.h"
#include "text/utf8_blocks.h"
#include "text/utf8_sequence.h"

namespace zel::strings {
namespace {

using escapes::isDroppedControl;
using escapes::isMarkupCharacter;
using text::ByteClass;
using Bytes = std::span<const std::uint8_t>;

// Headroom beyond the expected output, so that a text with a few entities never regrows.
constexpr std::size_t kOutputSlack = 4096;
// The HTML encoder's reservation per input unit.
constexpr std::size_t kHtmlReservePerByte = 4;
// Leads U+F000 to U+FFFF, where the two byte order marks are.
constexpr std::uint8_t kByteOrderMarkLead = 0xEF;

constexpr bool isHigh(std::uint8_t b) {
  return b >= text::kFirstNonAscii;
}

// Where the quick tests stop: the end of what they read, and what forces the full pass.
constexpr ByteClass kHtmlQuickStops([](std::uint8_t b) {
  return b == 0 || isMarkupCharacter(b) || isHigh(b);
});
constexpr ByteClass kXmlQuickStops([](std::uint8_t b) { return b == 0 || isMarkupCharacter(b); });

// Where the full passes stop copying: tab and line breaks go with the runs.
constexpr ByteClass kHtmlStops([](std::uint8_t b) {
  return isDroppedControl(b) || isMarkupCharacter(b) || isHigh(b);
});
constexpr ByteClass kHtmlStopsMarkupAsIs([](std::uint8_t b) {
  return isDroppedControl(b) || isHigh(b);
});
constexpr ByteClass kXmlStops([](std::uint8_t b) {
  return isDroppedControl(b) || isMarkupCharacter(b) || b == kByteOrderMarkLead;
});

Bytes bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Runs between stops are often short: a few bytes looked at one by one spare the vector search
// its set-up.
constexpr std::size_t kBytesBeforeSearch = 8;

std::size_t findFrom(Bytes bytes, std::size_t at, const ByteClass& stops) {
  for (const std::size_t end = std::min(bytes.size(), at + kBytesBeforeSearch); at < end; ++at) {
    if (stops.contains(bytes[at])) return at;
  }
  return at + text::findByteInClass(bytes.subspan(at), stops);
}

struct Sequence {
  char32_t value = 0;
  std::size_t length = 0;  // 0: malformed, decoding ends here
};

Sequence sequenceAt(Bytes bytes, std::size_t at) {
  const std::uint8_t* start = bytes.data() + at;
  const std::size_t length = text::multiByteSequenceLength(start, bytes.size() - at);
  return {length == 0 ? 0 : text::multiByteSequenceValue(start, length), length};
}

// The decoder leaves both out of the code points.
constexpr bool isByteOrderMark(char32_t c) {
  return c == text::blocks::kByteOrderMark || c == text::blocks::kSwappedByteOrderMark;
}

// True when the decoder would yield no code point at all.
bool decodesToNothing(Bytes bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    if (!isHigh(bytes[at])) return false;
    const Sequence sequence = sequenceAt(bytes, at);
    if (sequence.length == 0) return true;
    if (!isByteOrderMark(sequence.value)) return false;
    at += sequence.length;
  }
  return true;
}

// The caller's own string stands unless nothing at all was decoded, which gives nil.
template <class Result>
std::optional<Result> unchanged(Bytes bytes) {
  return decodesToNothing(bytes) ? std::optional<Result>(Result{}) : std::nullopt;
}

// Read up to the first NUL: any markup character or non-ASCII code point forces the full pass.
bool htmlNeedsEscaping(Bytes bytes) {
  for (std::size_t at = findFrom(bytes, 0, kHtmlQuickStops); at < bytes.size();
       at = findFrom(bytes, at, kHtmlQuickStops)) {
    if (bytes[at] == 0) return false;
    if (!isHigh(bytes[at])) return true;
    const Sequence sequence = sequenceAt(bytes, at);
    if (sequence.length == 0) return false;
    if (!isByteOrderMark(sequence.value)) return true;
    at += sequence.length;
  }
  return false;
}

// `valid` is well-formed: every byte order mark lead starts a three-byte sequence.
void appendXmlNonAscii(Bytes valid, std::size_t& at, std::string& out) {
  constexpr std::size_t kLength = 3;
  const std::uint8_t* start = valid.data() + at;
  at += kLength;
  if (!isByteOrderMark(text::multiByteSequenceValue(start, kLength))) {
    out.append(reinterpret_cast<const char*>(start), kLength);
  }
}

void appendRun(Bytes bytes, std::size_t from, std::size_t to, std::string& out) {
  out.append(reinterpret_cast<const char*>(bytes.data()) + from, to - from);
}

}  // namespace

std::optional<std::string> encodeHtmlEntities(std::string_view utf8, std::int64_t options) {
  const Bytes bytes = bytesOf(utf8);
  if (!htmlNeedsEscaping(bytes)) return unchanged<std::string>(bytes);
  const bool markupAsIs = (options & kEntityOptionBit) != 0;
  const ByteClass& stops = markupAsIs ? kHtmlStopsMarkupAsIs : kHtmlStops;
  std::string out;
  out.reserve(kHtmlReservePerByte * bytes.size() + kOutputSlack);
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t stop = findFrom(bytes, at, stops);
    appendRun(bytes, at, stop, out);
    // Stops come in groups (words of non-ASCII text): the ones that follow need no search.
    for (at = stop; at < bytes.size() && stops.contains(bytes[at]);) {
      if (!isHigh(bytes[at])) {
        escapes::appendHtmlEscape(out, bytes[at++], markupAsIs);
        continue;
      }
      const Sequence sequence = sequenceAt(bytes, at);
      if (sequence.length == 0) return out;
      if (!isByteOrderMark(sequence.value)) {
        escapes::appendHtmlEscape(out, sequence.value, markupAsIs);
      }
      at += sequence.length;
    }
  }
  return out;
}

std::optional<std::string> encodeXmlEntities(std::string_view utf8, std::int64_t options) {
  const Bytes valid = bytesOf(utf8).first(text::validUtf8Length(bytesOf(utf8)));
  const std::size_t quickStop = findFrom(valid, 0, kXmlQuickStops);
  if (quickStop == valid.size() || valid[quickStop] == 0) return unchanged<std::string>(valid);
  const bool namedApostrophe = (options & kEntityOptionBit) != 0;
  std::string out;
  out.reserve(valid.size() + kOutputSlack);
  for (std::size_t at = 0; at < valid.size();) {
    const std::size_t stop = findFrom(valid, at, kXmlStops);
    appendRun(valid, at, stop, out);
    for (at = stop; at < valid.size() && kXmlStops.contains(valid[at]);) {
      if (valid[at] == kByteOrderMarkLead) {
        appendXmlNonAscii(valid, at, out);
      } else {
        escapes::appendXmlEscape(out, valid[at++], namedApostrophe);
      }
    }
  }
  return out;
}

}  // namespace zel::strings
