#include "strings/text_search_adapters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "framework/debug_log.h"
#include "framework/exceptions.h"
#include "framework/host_api.h"
#include "strings/line_endings.h"
#include "strings/text_search.h"

namespace zel::adapters {
namespace {

// Nil on either side never matches.
template <bool (*Test)(std::string_view, std::string_view)>
RBBoolean testUtf8Pair(OnFailure policy, REALstring text, REALstring other) noexcept {
  if (text == nullptr || other == nullptr) return false;
  return guarded(policy, [&]() -> RBBoolean {
    HostText first(text), second(other);
    return Test(first.utf8(), second.utf8());
  });
}

// The neighbours are read as signed bytes, as the word-boundary test sees them; the text's
// terminator stands after its last byte.
void logOccurrence(std::string_view text, std::size_t position, std::size_t wordLength) {
  debugLogInt64("position found", static_cast<std::int64_t>(position));
  if (position > 0) debugLogInt32("posBefore", static_cast<signed char>(text[position - 1]));
  const std::size_t after = position + wordLength;
  debugLogInt32("posAfter", after < text.size() ? static_cast<signed char>(text[after]) : 0);
}

std::string withLineEndings(std::string_view text, std::string_view newLine, bool yield) {
  return strings::replaceLineEndings(text, newLine, yield, [] { host::REALYieldToRB(); });
}

// UTF-16 and UTF-32 text is rewritten as UTF-8; any other keeps its encoding and its bytes.
REALstring replaceLineEndingsIn(REALstring text, REALstring newLine, bool yield) {
  const std::uint32_t textEncoding = host::REALGetStringEncoding(text);
  if (isWideUnicode(textEncoding)) {
    HostText source(text), replacement(newLine);
    return buildString(withLineEndings(source.utf8(), replacement.utf8(), yield), encoding::kUTF8);
  }
  const OwnedString converted(host::REALConvertString(newLine, textEncoding));
  const HostStringBytes source(text), replacement(converted.get());
  return buildString(withLineEndings(source.view(), replacement.view(), yield), textEncoding);
}

}  // namespace

RBBoolean HasPrefixZEL(REALstring text, REALstring prefix) noexcept {
  return testUtf8Pair<&strings::hasPrefix>(OnFailure::raise, text, prefix);
}

RBBoolean HasPostfixZEL(REALstring text, REALstring prefix) noexcept {
  return testUtf8Pair<&strings::hasPostfix>(OnFailure::raise, text, prefix);
}

RBBoolean ContainsWholeWordZEL(REALstring text, REALstring word) noexcept {
  if (text == nullptr || word == nullptr) return false;
  return guarded(OnFailure::raise, [&]() -> RBBoolean {
    HostText haystack(text), needle(word);
    const std::string_view bytes = haystack.utf8(), wanted = needle.utf8();
    strings::OccurrenceObserver observe;
    if (debugEnabled()) {
      observe = [&](std::size_t position) { logOccurrence(bytes, position, wanted.size()); };
    }
    return strings::containsWholeWord(bytes, wanted, observe);
  });
}

RBInteger CountOccurancesZEL(REALstring s, REALstring find) noexcept {
  if (s == nullptr || find == nullptr) return 0;
  return guarded(OnFailure::raise, [&]() -> RBInteger {
    const HostStringBytes text(s), pattern(find);
    if (text.size() == 0) return 0;
    const std::int64_t count = strings::countOccurrences(text.view(), pattern.view());
    if (debugEnabled()) debugLogInt64("ReplaceCount", count);
    return count;
  });
}

// Same encoding: the stored bytes, and a side without data sorts first. Different encodings:
// both as UTF-8.
RBInteger StrCompCharactersZEL(REALstring a, REALstring b) noexcept {
  return guarded(OnFailure::raise, [&]() -> RBInteger {
    if (host::REALGetStringEncoding(a) == host::REALGetStringEncoding(b)) {
      const HostStringBytes first(a), second(b);
      if (first.data() == nullptr || second.data() == nullptr) return -1;
      return strings::compareCharacters(first.view(), second.view());
    }
    HostText first(a), second(b);
    return strings::compareCharacters(first.utf8(), second.utf8());
  });
}

// Failures keep their own message rather than the generic translation.
REALstring ReplaceLineEndingsZEL(REALstring text, REALstring newLine, RBBoolean yield) noexcept {
  if (text == nullptr) return nullptr;
  return guarded(OnFailure::raiseOwnMessage,
                 [&] { return replaceLineEndingsIn(text, newLine, yield != 0); });
}

}  // namespace zel::adapters
