// Prefix, suffix and whole-word tests, occurrence counting and character comparison.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace zel::strings {

// Bytewise and case-sensitive; an empty prefix is a prefix of everything.
bool hasPrefix(std::string_view text, std::string_view prefix);
bool hasPostfix(std::string_view text, std::string_view postfix);

// Told the byte offset of every occurrence examined, whole word or not (for the debug log).
using OccurrenceObserver = std::function<void(std::size_t position)>;

// ASCII case is ignored. Only ASCII letters join a word: every other byte, including every
// byte from 0x80 up, separates words. The text is searched up to its first NUL.
// An empty word is never found.
bool containsWholeWord(std::string_view text, std::string_view word,
                       const OccurrenceObserver& observe = {});

// Non-overlapping, case-sensitive; 0 when either is empty.
std::int64_t countOccurrences(std::string_view text, std::string_view find);

// -1, 0 or 1 by unsigned bytes; a proper prefix sorts first.
int compareCharacters(std::string_view a, std::string_view b);

}  // namespace zel::strings
