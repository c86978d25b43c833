#include "strings/unicode_composition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "strings/decomposition_table.h"

namespace zel::strings {
namespace {

std::size_t unitsOf(const DecompositionEntry& row) {
  return static_cast<std::size_t>(std::find(row.units.begin(), row.units.end(), 0) -
                                  row.units.begin());
}

TEST(UnicodeCompositionKernel, TableHasTheStatedShape) {
  ASSERT_EQ(decompositionTable.size(), 12197u);
  EXPECT_EQ(decompositionTable.front().composed, 0x00C0);
  EXPECT_EQ(decompositionTable.back().composed, 0xFB4E);
  EXPECT_TRUE(std::adjacent_find(decompositionTable.begin(), decompositionTable.end(),
                                 [](const auto& x, const auto& y) {
                                   return x.composed >= y.composed;
                                 }) == decompositionTable.end());
  std::map<std::size_t, int> nonHangulByLength;
  int hangul = 0;
  for (const auto& row : decompositionTable) {
    ASSERT_TRUE(std::all_of(row.units.begin() + static_cast<long>(unitsOf(row)), row.units.end(),
                            [](char16_t unit) { return unit == 0; }));
    if (row.composed >= 0xAC00 && row.composed <= 0xD7A3) {
      ++hangul;
    } else {
      ++nonHangulByLength[unitsOf(row)];
    }
  }
  EXPECT_EQ(hangul, 11172);
  EXPECT_EQ(nonHangulByLength, (std::map<std::size_t, int>{{2, 769}, {3, 220}, {4, 36}}));
}

struct ConversionCase {
  std::u16string input, output;
};

TEST(UnicodeCompositionKernel, DecomposesOneUnitAtATime) {
  const ConversionCase cases[] = {
      {u"caf\u00E9", u"cafe\u0301"},  {u"\uAC01", u"\u1100\u1161\u11A8"},
      {u"\uAC00", u"\u1100\u1161"},   {u"\u2126", u"\u2126"},
      {u"\u01DE", u"A\u0308\u0304"},  {u"\uFA6C", u"\U000242EE"},
      {u"\u1E69", u"s\u0323\u0307"},  {u"\u0401\u3001", u"\u0415\u0308\u3001"},
      {u"\U0001F600", u"\U0001F600"}, {u"", u""},
  };
  for (const auto& c : cases) EXPECT_EQ(decomposeCharacters(c.input), c.output);

  std::u16string below(0xC0, u'\0');
  for (char16_t unit = 0; unit < 0xC0; ++unit) below[unit] = unit;
  EXPECT_EQ(decomposeCharacters(below), below);
}

TEST(UnicodeCompositionKernel, ComposesByTheFirstMatchingRow) {
  const ConversionCase cases[] = {
      {u"cafe\u0301", u"caf\u00E9"},
      {u"\u1100\u1161", u"\uAC00"},
      // The two-jamo row comes first, so the trailing consonant stays apart.
      {u"\u1100\u1161\u11A8", u"\uAC00\u11A8"},
      {u"A\u0308\u0304", u"\u00C4\u0304"},
      {u"\U000242EE", u"\uFA6C"},
      {u"e", u"e"},
      {u"A\u0308", u"\u00C4"},
      {u"\u0308\u0301x", u"\u0344x"},
      {u"\u1100x\u1161", u"\u1100x\u1161"},
      {u"", u""},
  };
  for (const auto& c : cases) EXPECT_EQ(composeCharacters(c.input), c.output);
}

// The linear scan of the whole table, kept as the reference for the indexed composition.
std::u16string referenceCompose(std::u16string_view text) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size();) {
    const DecompositionEntry* hit = nullptr;
    for (const auto& row : decompositionTable) {
      if (row.units[0] != text[i]) continue;
      const std::size_t length = unitsOf(row);
      if (i + length <= text.size() &&
          std::u16string_view(row.units.data(), length) == text.substr(i, length)) {
        hit = &row;
        break;
      }
    }
    if (hit) {
      out.push_back(hit->composed);
      i += unitsOf(*hit);
    } else {
      out.push_back(text[i++]);
    }
  }
  return out;
}

TEST(UnicodeCompositionKernel, IndexedCompositionMatchesTheLinearScan) {
  std::mt19937 random(99);
  std::vector<char16_t> pool = {u'x', 0x0301, 0x0308, 0x0304, 0x11A8, 0xD800, 0xDC00};
  for (const auto& row : decompositionTable) {
    if (random() % 16 == 0) pool.insert(pool.end(), row.units.begin(), row.units.begin() + 4);
  }
  std::erase(pool, u'\0');
  for (int round = 0; round < 150; ++round) {
    std::u16string text;
    while (text.size() < 40) {
      const auto& row = decompositionTable[random() % decompositionTable.size()];
      if (random() % 2) {
        text.append(row.units.data(), unitsOf(row));
      } else {
        text.push_back(pool[random() % pool.size()]);
      }
    }
    ASSERT_EQ(composeCharacters(text), referenceCompose(text)) << round;
  }
}

// Any trace sends composition and decomposition down the exact path, one unit at a time.
class DiscardingTrace final : public UnicodeTrace {
 public:
  void note(const char*, std::int64_t) override {}
  void note(const char*, std::int64_t, std::int64_t) override {}
};

std::u16string exactCompose(std::u16string_view text) {
  DiscardingTrace trace;
  return composeCharacters(text, &trace);
}

std::u16string exactDecompose(std::u16string_view text) {
  DiscardingTrace trace;
  return decomposeCharacters(text, &trace);
}

TEST(UnicodeCompositionKernel, BulkCopyingMatchesTheExactPath) {
  std::mt19937 random(5);
  std::vector<char16_t> pool = {u'x', u' ', 0xD800, 0xDBFF, 0xDC00, 0xDFFF};
  for (const auto& row : decompositionTable) {
    if (random() % 8 != 0) continue;
    pool.push_back(row.composed);
    pool.insert(pool.end(), row.units.begin(), row.units.begin() + 4);
  }
  std::erase(pool, u'\0');
  for (std::size_t length = 0; length <= 200; ++length) {
    for (int round = 0; round < 4; ++round) {
      std::u16string text;
      while (text.size() < length) {
        const auto& row = decompositionTable[random() % decompositionTable.size()];
        switch (random() % 3) {
          case 0:
            text.append(row.units.data(), unitsOf(row));
            break;
          case 1:
            text.append(random() % 40, u'a');
            break;
          default:
            text.push_back(pool[random() % pool.size()]);
        }
      }
      text.resize(length);
      ASSERT_EQ(composeCharacters(text), exactCompose(text)) << length << " " << round;
      ASSERT_EQ(decomposeCharacters(text), exactDecompose(text)) << length << " " << round;
    }
  }
  // Both forms of every row, at every offset within a block of plain letters.
  for (const auto& row : decompositionTable) {
    const std::u16string before((&row - decompositionTable.data()) % 40, u'a'), after(40, u'z');
    for (const std::u16string_view form : {std::u16string_view(&row.composed, 1),
                                           std::u16string_view(row.units.data(), unitsOf(row))}) {
      const std::u16string text = before + std::u16string(form) + after;
      ASSERT_EQ(composeCharacters(text), exactCompose(text))
          << std::hex << static_cast<int>(row.composed);
      ASSERT_EQ(decomposeCharacters(text), exactDecompose(text))
          << std::hex << static_cast<int>(row.composed);
    }
  }
}

}  // namespace
}  // namespace zel::strings
