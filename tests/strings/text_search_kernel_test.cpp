#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "strings/text_search.h"

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
