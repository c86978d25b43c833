#include "strings/accent_map.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

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

// One unit each: look-alikes, spelled-out ligatures and fractions, and units of other scripts or
// with compositions outside the folded blocks, which stay as they are.
TEST(AccentMapKernel, ReducesSingleUnits) {
  const std::pair<std::u16string, std::u16string> cases[] = {
      {u"\u0142", u"l"},      {u"\u00D8", u"O"},      {u"\u2014", u"-"},
      {u"\u2019", u"'"},      {u"\u00A0", u" "},      {u"\u2126", u"\u03A9"},
      {u"\uFF21", u"A"},      {u"\uFF5E", u"~"},      {u"\u00E6", u"ae"},
      {u"\u215E", u"7/8"},    {u"\u2152", u"1/10"},   {u"\u2189", u"0/3"},
      {u"\u01E2", u"\u01E2"}, {u"\u1E9B", u"\u1E9B"}, {u"\u1FEE", u"\u1FEE"},
      {u"\u0439", u"\u0439"}, {u"\u0929", u"\u0929"}, {u"\uFF5F", u"\uFF5F"},
      {u"\u00BB", u"\u00BB"},
  };
  for (const auto& [unit, reduced] : cases) {
    EXPECT_EQ(removed(unit), reduced) << int{unit[0]};
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
