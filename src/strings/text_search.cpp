#include "strings/text_search.h"

#include <algorithm>

#include "strings/linear_search.h"

namespace zel::strings {
namespace {

// Bytes from 0x80 up read as negative numbers, hence as blanks: only ASCII letters join.
constexpr bool separatesWords(unsigned char c) {
  const unsigned char folded = AsciiCaseFolded::fold(c);
  return folded < 'a' || folded > 'z';
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

// Where the zero-terminated run that contains `from` ends.
std::size_t terminatorFrom(std::string_view text, std::size_t from) {
  return std::min(text.find('\0', from), text.size());
}

// A word holding a NUL matches only where its NUL meets the run's terminator: `head`, the part
// before the NUL, must end the run.
std::size_t headEndingRun(std::string_view run, std::size_t from, std::string_view head) {
  if (run.size() < from + head.size()) return std::string_view::npos;
  const std::size_t at = run.size() - head.size();
  const bool equal =
      std::ranges::equal(run.substr(at), head, {}, AsciiCaseFolded::fold, AsciiCaseFolded::fold);
  return equal ? at : std::string_view::npos;
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
  const std::string_view head = word.substr(0, word.find('\0'));
  if (head.empty()) return false;
  const LinearSearcher<AsciiCaseFolded> searcher(head);
  std::size_t runEnd = terminatorFrom(text, 0);
  for (std::size_t position = 0; bytes[position] != 0;) {
    // A rejected match that ran through a NUL resumes the search in the run after it.
    if (position > runEnd) runEnd = terminatorFrom(text, position);
    const std::string_view run = text.substr(0, runEnd);
    const std::size_t found = head.size() == word.size() ? searcher.find(run, position)
                                                         : headEndingRun(run, position, head);
    if (found == std::string_view::npos) return false;
    if (observe) observe(found);
    const bool startsWord = found == 0 || separatesWords(bytes[found - 1]);
    if (startsWord && separatesWords(bytes[found + word.size()])) return true;
    position = found + word.size();
  }
  return false;
}

std::int64_t countOccurrences(std::string_view text, std::string_view find) {
  if (text.empty() || find.empty()) return 0;
  if (find.size() == 1) return std::ranges::count(text, find.front());
  const LinearSearcher<ExactBytes> searcher(find);
  std::int64_t count = 0;
  for (auto at = searcher.find(text, 0); at != std::string_view::npos;
       at = searcher.find(text, at + find.size())) {
    ++count;
  }
  return count;
}

int compareCharacters(std::string_view a, std::string_view b) {
  const int order = a.compare(b);
  return (order > 0) - (order < 0);
}

}  // namespace zel::strings
