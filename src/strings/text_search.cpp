#include "strings/text_search.h"

#include <algorithm>

namespace zel::strings {
namespace {

constexpr unsigned char foldCase(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

// Bytes from 0x80 up read as negative numbers, hence as blanks: only ASCII letters join.
constexpr bool separatesWords(unsigned char c) {
  return foldCase(c) < 'a' || foldCase(c) > 'z';
}

// The text as the zero-terminated string that the search walks: zero past its end.
class TerminatedBytes {
 public:
  explicit TerminatedBytes(std::string_view bytes) : bytes_(bytes) {}
  unsigned char operator[](std::size_t i) const {
    return i < bytes_.size() ? static_cast<unsigned char>(bytes_[i]) : 0;
  }

 private:
  std::string_view bytes_;
};

// First byte by lower case, then the rest by a case-insensitive compare that, like any
// zero-terminated compare, ends early where both sides hold a NUL.
bool matchesAt(const TerminatedBytes& text, std::size_t position, std::string_view word) {
  if (foldCase(text[position]) != foldCase(static_cast<unsigned char>(word.front()))) return false;
  for (std::size_t k = 1; k < word.size(); ++k) {
    const auto expected = static_cast<unsigned char>(word[k]);
    const unsigned char actual = text[position + k];
    if (foldCase(actual) != foldCase(expected)) return false;
    if (actual == 0) return true;
  }
  return true;
}

}  // namespace

bool hasPrefix(std::string_view text, std::string_view prefix) {
  return text.starts_with(prefix);
}

bool hasPostfix(std::string_view text, std::string_view postfix) {
  return text.ends_with(postfix);
}

bool containsWholeWord(std::string_view text, std::string_view word,
                       const OccurrenceObserver& observe) {
  if (word.empty() || word.size() > text.size()) return false;
  const TerminatedBytes bytes(text);
  for (std::size_t position = 0; bytes[position] != 0;) {
    if (!matchesAt(bytes, position, word)) {
      ++position;
      continue;
    }
    if (observe) observe(position);
    const bool startsWord = position == 0 || separatesWords(bytes[position - 1]);
    if (startsWord && separatesWords(bytes[position + word.size()])) return true;
    position += word.size();
  }
  return false;
}

std::int64_t countOccurrences(std::string_view text, std::string_view find) {
  if (text.empty() || find.empty()) return 0;
  if (find.size() == 1) return std::ranges::count(text, find.front());
  std::int64_t count = 0;
  for (auto at = text.find(find); at != std::string_view::npos;
       at = text.find(find, at + find.size())) {
    ++count;
  }
  return count;
}

int compareCharacters(std::string_view a, std::string_view b) {
  const int order = a.compare(b);
  return (order > 0) - (order < 0);
}

}  // namespace zel::strings
