#include "strings/text_search.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "strings/linear_search.h"
#include "text/simd_path.h"

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

// Occurrence counting: vector passes mark the starts where the pattern's first few bytes and its
// last byte match, and only those are compared in full. When the full comparisons have cost more
// than kVerifyBudget times the text passed, the linear matcher counts the rest, so the time stays
// linear for every input.
constexpr std::size_t kCandidateBlock = 128;
constexpr std::size_t kMostComparedBytes = 8;
constexpr std::size_t kVerifyBudget = 4;
constexpr std::size_t kVerifySlack = 4096;

// flags[k] = 1 where expected[0, Compared) sits at at + k and expected[Compared] at
// at + k + lastOffset, else 0; returns how many are 1. The count of compared bytes is fixed, so
// that each start's comparisons stay in vector registers.
template <std::size_t Compared>
[[gnu::always_inline]] inline std::size_t markCandidates(const unsigned char* at,
                                                         std::size_t lastOffset,
                                                         const unsigned char* expected,
                                                         unsigned char* flags) noexcept {
  std::array<unsigned char, Compared + 1> bytes;
  std::memcpy(bytes.data(), expected, bytes.size());
  std::array<unsigned char, kCandidateBlock> marks;
  for (std::size_t k = 0; k < kCandidateBlock; ++k) {
    bool match = at[k + lastOffset] == bytes[Compared];
    for (std::size_t j = 0; j < Compared; ++j) match &= at[k + j] == bytes[j];
    marks[k] = static_cast<unsigned char>(match);
  }
  std::memcpy(flags, marks.data(), kCandidateBlock);
  // A byte holds the sum: a block has fewer starts than a byte counts to.
  static_assert(kCandidateBlock <= UINT8_MAX);
  unsigned char marked = 0;
  for (const unsigned char mark : marks) marked = static_cast<unsigned char>(marked + mark);
  return marked;
}

using CandidateMarker = std::size_t (*)(const unsigned char*, std::size_t, const unsigned char*,
                                        unsigned char*) noexcept;
// Indexed by the number of bytes compared before the last, 1 to kMostComparedBytes.
using CandidateMarkers = std::array<CandidateMarker, kMostComparedBytes + 1>;

template <std::size_t Compared>
std::size_t markCandidatesPortable(const unsigned char* at, std::size_t lastOffset,
                                   const unsigned char* expected, unsigned char* flags) noexcept {
  return markCandidates<Compared>(at, lastOffset, expected, flags);
}

template <std::size_t... Compared>
constexpr CandidateMarkers portableMarkers(std::index_sequence<Compared...>) {
  return {nullptr, markCandidatesPortable<Compared + 1>...};
}

#if defined(__x86_64__)
// The same loops compiled for AVX2, only reached after the processor was found to run it.
template <std::size_t Compared>
[[gnu::target("avx2")]] std::size_t markCandidatesAvx2(const unsigned char* at,
                                                       std::size_t lastOffset,
                                                       const unsigned char* expected,
                                                       unsigned char* flags) noexcept {
  return markCandidates<Compared>(at, lastOffset, expected, flags);
}

template <std::size_t... Compared>
constexpr CandidateMarkers avx2Markers(std::index_sequence<Compared...>) {
  return {nullptr, markCandidatesAvx2<Compared + 1>...};
}
#endif

CandidateMarker candidateMarker(std::size_t compared) noexcept {
  constexpr auto kComparedCounts = std::make_index_sequence<kMostComparedBytes>{};
#if defined(__x86_64__)
  static constexpr CandidateMarkers kAvx2 = avx2Markers(kComparedCounts);
  if (text::activeSimdPath() == text::SimdPath::avx2) return kAvx2[compared];
#endif
  static constexpr CandidateMarkers kPortable = portableMarkers(kComparedCounts);
  return kPortable[compared];
}

// Which byte of a word of flags, as read from memory, is the first one set; and the word without
// it.
std::size_t firstFlag(std::uint64_t marks) noexcept {
  constexpr unsigned kBitsPerByte = 8;
  if constexpr (std::endian::native == std::endian::little) {
    return static_cast<std::size_t>(std::countr_zero(marks)) / kBitsPerByte;
  } else {
    return static_cast<std::size_t>(std::countl_zero(marks)) / kBitsPerByte;
  }
}

std::uint64_t withoutFlag(std::uint64_t marks, std::size_t index) noexcept {
  constexpr unsigned kBitsPerByte = 8;
  constexpr std::size_t kLastByte = sizeof marks - 1;
  const std::size_t byte = std::endian::native == std::endian::little ? index : kLastByte - index;
  return marks & ~(std::uint64_t{1} << (byte * kBitsPerByte));
}

// Whether two occurrences can overlap: some proper suffix of find is also its prefix.
bool overlapsItself(std::string_view find) {
  for (std::size_t shift = 1; shift < find.size(); ++shift) {
    if (find.substr(shift) == find.substr(0, find.size() - shift)) return true;
  }
  return false;
}

// Non-overlapping occurrences of find (at least 2 bytes) that start at `from` or later.
std::int64_t countWithLinearMatcher(std::string_view text, std::string_view find,
                                    std::size_t from) {
  const LinearSearcher<ExactBytes> searcher(find);
  std::int64_t count = 0;
  for (auto at = searcher.find(text, from); at != std::string_view::npos;
       at = searcher.find(text, at + find.size())) {
    ++count;
  }
  return count;
}

std::int64_t countLongerPattern(std::string_view text, std::string_view find) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t lastOffset = find.size() - 1;
  const std::size_t compared = std::min(lastOffset, kMostComparedBytes);
  // The compared bytes in the order the marker reads them, then the bytes left for a full
  // comparison.
  std::array<unsigned char, kMostComparedBytes + 1> expected{};
  std::memcpy(expected.data(), find.data(), compared);
  expected[compared] = static_cast<unsigned char>(find.back());
  const std::string_view rest = find.substr(compared, lastOffset - compared);
  // Then every mark is an occurrence, and none can hide another: the marks are simply summed.
  const bool marksAreCount = rest.empty() && !overlapsItself(find);
  const CandidateMarker mark = candidateMarker(compared);
  std::int64_t count = 0;
  std::size_t next = 0;  // no match may start before it: occurrences do not overlap
  std::size_t verified = 0;
  std::array<unsigned char, kCandidateBlock> flags;
  std::size_t block = 0;
  for (; text.size() - block >= kCandidateBlock + lastOffset; block += kCandidateBlock) {
    const std::size_t marked = mark(bytes + block, lastOffset, expected.data(), flags.data());
    if (marksAreCount) {
      count += static_cast<std::int64_t>(marked);
      continue;
    }
    if (marked == 0) continue;
    for (std::size_t word = 0; word < kCandidateBlock; word += sizeof(std::uint64_t)) {
      std::uint64_t marks;
      std::memcpy(&marks, flags.data() + word, sizeof marks);
      for (; marks != 0; marks = withoutFlag(marks, firstFlag(marks))) {
        const std::size_t at = block + word + firstFlag(marks);
        if (at < next) continue;
        verified += rest.size();
        if (std::memcmp(text.data() + at + compared, rest.data(), rest.size()) == 0) {
          ++count;
          next = at + find.size();
        }
        if (verified > kVerifyBudget * at + kVerifySlack) {
          return count + countWithLinearMatcher(text, find, std::max(next, at + 1));
        }
      }
    }
  }
  return count + countWithLinearMatcher(text, find, std::max(next, block));
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
  return countLongerPattern(text, find);
}

int compareCharacters(std::string_view a, std::string_view b) {
  const int order = a.compare(b);
  return (order > 0) - (order < 0);
}

}  // namespace zel::strings
