#include "strings/accent_map.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "strings/decomposition_table.h"

namespace zel::strings {
namespace {

const AccentMap& builtMap() {
  buildAccentMap();
  return *builtAccentMap();
}

std::u16string removed(std::u16string_view text, bool ignoreCase = false) {
  return removeAccents(text, ignoreCase, &builtMap());
}

struct RemovalCase {
  std::u16string text;
  bool ignoreCase;
  std::u16string reduced;
};

TEST(AccentMapKernel, ReducesTextToBaseLetters) {
  const RemovalCase cases[] = {
      {u"Cr\u00E8me Br\u00FBl\u00E9e", false, u"Creme Brulee"},
      {u"Cr\u00E8me Br\u00FBl\u00E9e", true, u"CREME BRULEE"},
      {u"\u00C6sop \u00BD", false, u"AEsop 1/2"},
      {u"\u00C6sop \u00E6", true, u"AESOP AE"},
      {u"e\u0301\u036F\u0300", false, u"e"},
      {u"\u0401", false, u"\u0401"},
      {u"\u00DE", false, u"P"},
      {u"", false, u""},
      {u"\u03AC\u1F00\u0390", true, u"\u03B1\u03B1\u03B9"},
      {u"\u00DF\uFF41\u00E0", true, u"SAA"},
      {u"\u1EC7 \uAC00 \u304C", false, u"e \uAC00 \u304C"},
      {u"\u212B\u2260\u226E\u226F", false, u"A=<>"},
      {u"a\U0001F600", false, u"a\U0001F600"},
  };
  for (const auto& c : cases) EXPECT_EQ(removed(c.text, c.ignoreCase), c.reduced);
}

TEST(AccentMapKernel, HandSetEntriesKeepTheirLookAlikes) {
  const std::pair<char16_t, char16_t> entries[] = {
      {0x00A0, u' '}, {0x00D0, u'D'},  {0x00F0, u'd'},  {0x00D8, u'O'}, {0x00F8, u'o'},
      {0x00DE, u'P'}, {0x00FE, u'p'},  {0x00DF, u's'},  {0x0141, u'L'}, {0x0142, u'l'},
      {0x037E, u';'}, {0x1E9E, u'S'},  {0x1FBE, 0x3B9}, {0x1FEF, u'`'}, {0x2013, u'-'},
      {0x2014, u'-'}, {0x2018, u'\''}, {0x2019, u'\''}, {0x2022, u'*'}, {0x2126, 0x3A9},
      {0x212A, u'K'},
  };
  for (const auto& [unit, lookAlike] : entries) EXPECT_EQ(builtMap()[unit], lookAlike) << int{unit};
  for (char16_t unit = 0xFF01; unit <= 0xFF5E; ++unit) {
    EXPECT_EQ(builtMap()[unit], unit - 0xFF01 + u'!') << int{unit};
  }
}

TEST(AccentMapKernel, SpellsOutLigaturesAndFractions) {
  const std::pair<char16_t, std::u16string> spellings[] = {
      {0x00BC, u"1/4"}, {0x00BD, u"1/2"}, {0x00BE, u"3/4"},  {0x00C6, u"AE"},  {0x00E6, u"ae"},
      {0x2150, u"1/7"}, {0x2151, u"1/9"}, {0x2152, u"1/10"}, {0x2153, u"1/3"}, {0x2154, u"2/3"},
      {0x2155, u"1/5"}, {0x2156, u"2/5"}, {0x2157, u"3/5"},  {0x2158, u"4/5"}, {0x2159, u"1/6"},
      {0x215A, u"5/6"}, {0x215B, u"1/8"}, {0x215C, u"3/8"},  {0x215D, u"5/8"}, {0x215E, u"7/8"},
      {0x2189, u"0/3"},
  };
  for (const auto& [unit, spelling] : spellings) {
    EXPECT_EQ(removed(std::u16string(1, unit)), spelling) << int{unit};
  }
}

TEST(AccentMapKernel, FoldsExactly729DecomposableCharacters) {
  int folded = 0, changed = 0;
  for (const auto& row : decompositionTable) {
    if (builtMap()[row.composed] == row.composed) continue;
    EXPECT_EQ(builtMap()[row.composed], row.units[0]) << int{row.composed};
    ++folded;
  }
  for (std::size_t unit = 0; unit < builtMap().size(); ++unit) changed += builtMap()[unit] != unit;
  EXPECT_EQ(folded, 729);
  EXPECT_EQ(changed, 729 + 21 + 94);
  for (const char16_t keeps : {0x01E2, 0x01EF, 0x01FC, 0x0385, 0x03D3, 0x1E9B, 0x1FC1, 0x1FCE,
                               0x1FDE, 0x1FED, 0x1FEE, 0x0439, 0x0622, 0x0929, 0xAC00}) {
    EXPECT_EQ(builtMap()[keeps], keeps) << int{keeps};
  }
}

TEST(AccentMapKernel, UnbuiltMapTurnsMappedUnitsIntoZero) {
  EXPECT_EQ(removeAccents(u"\u00E9a\u0301\u00BD\u00E6", true, nullptr), std::u16string(u"\0\0"
                                                                                       u"1/2AE",
                                                                                       7));
}

TEST(AccentMapKernel, ConcurrentBuildsPublishOneMap) {
  std::vector<std::thread> threads;
  std::vector<const AccentMap*> seen(4);
  for (std::size_t i = 0; i < seen.size(); ++i) {
    threads.emplace_back([&seen, i] {
      buildAccentMap();
      seen[i] = builtAccentMap();
    });
  }
  for (auto& thread : threads) thread.join();
  for (const AccentMap* map : seen) {
    ASSERT_NE(map, nullptr);
    EXPECT_EQ((*map)[0x00E9], u'e');
  }
}

}  // namespace
}  // namespace zel::strings
