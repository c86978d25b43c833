#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "strings/text_search.h"
#include "text/simd_path.h"

namespace zel::strings {
namespace {

using namespace std::string_view_literals;

TEST(TextSearchKernel, PrefixAndPostfix) {
  struct Case {
    std::string_view text, affix;
    bool prefix, postfix;
  };
  for (const Case& c : std::vector<Case>{{"abc", "bc", false, true},
                                         {"abc", "ab", true, false},
                                         {"abc", "", true, true},
                                         {"ab", "abc", false, false},
                                         {"abc", "ABC", false, false},
                                         {"\xC3\xA9t\xC3\xA9", "\xC3\xA9", true, true}}) {
    EXPECT_EQ(hasPrefix(c.text, c.affix), c.prefix) << c.text << " / " << c.affix;
    EXPECT_EQ(hasPostfix(c.text, c.affix), c.postfix) << c.text << " / " << c.affix;
  }
}

TEST(TextSearchKernel, WholeWordBoundariesAreAsciiLettersOnly) {
  struct Case {
    std::string_view text, word;
    bool found;
  };
  for (const Case& c :
       std::vector<Case>{{"Hello World", "world", true},
                         {"HELLO", "hello", true},
                         {"helloworld", "world", false},
                         {"1world2", "world", true},
                         {"a_world-b", "world", true},
                         {"\xC3\xA9world", "world", true},  // bytes from 0x80 up read as negative
                         {"world\xC3\xA9", "world", true},
                         {"worlds world", "world", true},  // first hit rejected, second accepted
                         {"xa a a", "a a", false},  // the whole-word hit overlaps the rejected one
                         {"word", "words", false},
                         {"word", "", false},
                         {"ab\0 world"sv, "world", false},  // the search ends at the first NUL
                         {"\tword\n", "WORD", true}}) {
    EXPECT_EQ(containsWholeWord(c.text, c.word), c.found) << c.text << " / " << c.word;
  }
}

TEST(TextSearchKernel, WholeWordReportsEveryExaminedOccurrence) {
  std::vector<std::size_t> positions;
  EXPECT_TRUE(containsWholeWord("worlds aworld world", "world",
                                [&](std::size_t p) { positions.push_back(p); }));
  EXPECT_EQ(positions, (std::vector<std::size_t>{0, 8, 14}));
}

TEST(TextSearchKernel, CountsNonOverlappingOccurrences) {
  struct Case {
    std::string_view text, find;
    std::int64_t count;
  };
  for (const Case& c : std::vector<Case>{{"aaaa", "aa", 2},
                                         {"aaaaa", "aa", 2},
                                         {"abc", "abcd", 0},
                                         {"abcabcab", "abc", 2},
                                         {"aXaXa", "a", 3},
                                         {"aA", "A", 1},
                                         {"\xFF\x00\xFF"sv, "\xFF", 2},
                                         {"", "a", 0},
                                         {"abc", "", 0}}) {
    EXPECT_EQ(countOccurrences(c.text, c.find), c.count) << c.text << " / " << c.find;
  }
}

// The plain quadratic searches, as reference models.
namespace reference {

unsigned char fold(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}
unsigned char at(std::string_view s, std::size_t i) {  // the zero-terminated reading
  return i < s.size() ? static_cast<unsigned char>(s[i]) : 0;
}
bool joins(unsigned char c) {
  return fold(c) >= 'a' && fold(c) <= 'z';
}

bool matchesAt(std::string_view text, std::size_t p, std::string_view word) {
  for (std::size_t k = 0; k < word.size(); ++k) {
    if (fold(at(text, p + k)) != fold(static_cast<unsigned char>(word[k]))) return false;
    if (at(text, p + k) == 0) return k > 0;
  }
  return true;
}

bool containsWholeWord(std::string_view text, std::string_view word,
                       std::vector<std::size_t>& examined) {
  if (word.empty() || word.size() > text.size()) return false;
  for (std::size_t p = 0; at(text, p) != 0;) {
    if (!matchesAt(text, p, word)) {
      ++p;
      continue;
    }
    examined.push_back(p);
    if ((p == 0 || !joins(at(text, p - 1))) && !joins(at(text, p + word.size()))) return true;
    p += word.size();
  }
  return false;
}

std::int64_t countOccurrences(std::string_view text, std::string_view find) {
  if (text.empty() || find.empty()) return 0;
  std::int64_t count = 0;
  for (auto p = text.find(find); p != std::string_view::npos;
       p = text.find(find, p + find.size())) {
    ++count;
  }
  return count;
}

}  // namespace reference

// Calls `visit` with every string over `alphabet` of up to `maxLength` letters.
void forEachString(std::string_view alphabet, std::size_t maxLength,
                   const std::function<void(const std::string&)>& visit) {
  std::string s;
  const std::function<void()> extend = [&] {
    visit(s);
    if (s.size() == maxLength) return;
    for (const char letter : alphabet) {
      s.push_back(letter);
      extend();
      s.pop_back();
    }
  };
  extend();
}

struct SearchSpace {
  std::string_view alphabet;
  std::size_t textLength, patternLength;
};
// Case variants, separators, NUL and a second letter, for borders that are not all one letter.
const SearchSpace kSearchSpaces[] = {
    {"aA ", 8, 4}, {"abB", 7, 4}, {{"a \0", 3}, 7, 3}, {"ab", 10, 5}};

// Fails with the first pair where the kernel and the reference disagree.
void expectSameAsReference(std::string_view text, std::string_view pattern) {
  std::vector<std::size_t> examined, expectedExamined;
  const bool found =
      containsWholeWord(text, pattern, [&](std::size_t p) { examined.push_back(p); });
  ASSERT_EQ(found, reference::containsWholeWord(text, pattern, expectedExamined))
      << testing::PrintToString(text) << " / " << testing::PrintToString(pattern);
  ASSERT_EQ(examined, expectedExamined)
      << testing::PrintToString(text) << " / " << testing::PrintToString(pattern);
  ASSERT_EQ(countOccurrences(text, pattern), reference::countOccurrences(text, pattern))
      << testing::PrintToString(text) << " / " << testing::PrintToString(pattern);
}

TEST(TextSearchKernel, SearchesAgreeWithTheReferenceOnEverySmallInput) {
  for (const SearchSpace& space : kSearchSpaces) {
    std::vector<std::string> patterns;
    forEachString(space.alphabet, space.patternLength,
                  [&](const std::string& p) { patterns.push_back(p); });
    forEachString(space.alphabet, space.textLength, [&](const std::string& text) {
      for (const std::string& pattern : patterns) {
        expectSameAsReference(text, pattern);
        if (HasFatalFailure()) return;
      }
    });
    ASSERT_FALSE(HasFatalFailure());
  }
}

TEST(TextSearchKernel, SearchesAgreeWithTheReferenceOnRandomInputs) {
  constexpr int kRounds = 20000;
  constexpr std::string_view kLetters{"aAbB \0-", 7};
  std::mt19937 random(2026);
  const auto randomString = [&](std::size_t maxLength) {
    std::string s(random() % (maxLength + 1), ' ');
    for (char& c : s) c = kLetters[random() % kLetters.size()];
    return s;
  };
  // Every tenth text, with a longer pattern, is long enough for the vector blocks of the count, on
  // each path.
  constexpr std::size_t kShortText = 40, kLongText = 400;
  for (const text::SimdPath path : text::supportedSimdPaths()) {
    text::forceSimdPath(path);
    for (int round = 0; round < kRounds; ++round) {
      const bool longText = round % 10 == 0;
      const std::string pattern = randomString(longText ? 12 : 6);
      // Texts made of pieces of the pattern overlap it in many ways.
      std::string text;
      while (text.size() < (longText ? kLongText : kShortText)) {
        std::string piece = random() % 3 == 0 ? randomString(3) : pattern;
        // Near misses: one letter of the pattern changed, wherever a comparison might stop short.
        if (random() % 3 == 0 && !piece.empty())
          piece[random() % piece.size()] = kLetters[random() % kLetters.size()];
        text += piece;
      }
      expectSameAsReference(text, pattern);
      ASSERT_FALSE(HasFatalFailure()) << text::simdPathName(path);
    }
  }
  text::forceSimdPath(text::supportedSimdPaths().back());
}

// Repetitive text against a long pattern that fails only at its last byte: a search that compares
// the whole pattern again at every start needs tens of seconds here, a linear one milliseconds.
TEST(TextSearchKernel, RepetitiveInputsTakeLinearTime) {
  // Processor time, so that a busy machine does not count against the search.
  constexpr double kBudgetSeconds = 1.0;
  constexpr std::size_t kKiB = 1024;
  const auto nearMiss = [](std::size_t length) { return std::string(length - 1, 'a') + 'b'; };
  const std::string wholeWordText(256 * kKiB, 'a'), countText(2048 * kKiB, 'a');
  const std::string wholeWordPattern = nearMiss(64 * kKiB), countPattern = nearMiss(512 * kKiB);
  // Its first and last bytes agree everywhere: every start is a candidate that fails in the middle.
  const std::string candidateEverywhere =
      std::string(128 * kKiB, 'a') + 'b' + std::string(128 * kKiB, 'a');
  const struct {
    const char* name;
    std::function<std::int64_t()> search;
  } cases[] = {
      {"whole word",
       [&] { return std::int64_t{containsWholeWord(wholeWordText, wholeWordPattern)}; }},
      {"count", [&] { return countOccurrences(countText, countPattern); }},
      {"count, candidates everywhere",
       [&] { return countOccurrences(countText, candidateEverywhere); }},
  };
  for (const auto& c : cases) {
    const std::clock_t start = std::clock();
    EXPECT_EQ(c.search(), 0) << c.name;
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, kBudgetSeconds) << c.name;
  }
}

TEST(TextSearchKernel, ComparesUnsignedBytesThroughTheTerminator) {
  struct Case {
    std::string_view a, b;
    int order;
  };
  for (const Case& c : std::vector<Case>{{"abc", "abcd", -1},
                                         {"abcd", "abc", 1},
                                         {"abc", "abc", 0},
                                         {"", "", 0},
                                         {"a", "", 1},
                                         {"\xE9", "z", 1},
                                         {"B", "a", -1},
                                         {"ab", "ab\0"sv, -1}}) {
    EXPECT_EQ(compareCharacters(c.a, c.b), c.order) << c.a << " / " << c.b;
  }
}

}  // namespace
}  // namespace zel::strings
