#include "strings/accent_map.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <utility>

#include "strings/decomposition_table.h"

namespace zel::strings {
namespace {

constexpr bool inRange(char16_t unit, char16_t first, char16_t last) {
  return unit >= first && unit <= last;
}

// Latin, Greek and a few symbols fold to their base letter; every other script keeps itself.
constexpr bool foldsToBaseLetter(char16_t unit) {
  if (inRange(unit, 0x00C0, 0x0233)) {
    return !inRange(unit, 0x01E2, 0x01E3) && !inRange(unit, 0x01EE, 0x01EF) &&
           !inRange(unit, 0x01FC, 0x01FF);
  }
  if (inRange(unit, 0x0386, 0x03CE)) return true;
  if (inRange(unit, 0x1E00, 0x1EF9)) return unit != 0x1E9B;
  if (inRange(unit, 0x1F00, 0x1FFC)) {
    return unit != 0x1FC1 && !inRange(unit, 0x1FCD, 0x1FCF) && !inRange(unit, 0x1FDD, 0x1FDF) &&
           !inRange(unit, 0x1FED, 0x1FEE);
  }
  return unit == 0x212B || unit == 0x2260 || unit == 0x226E || unit == 0x226F;
}

constexpr std::pair<char16_t, char16_t> kLookAlikes[] = {
    {0x00A0, u' '}, {0x00D0, u'D'},  {0x00F0, u'd'},   {0x00D8, u'O'}, {0x00F8, u'o'},
    {0x00DE, u'P'}, {0x00FE, u'p'},  {0x00DF, u's'},   {0x0141, u'L'}, {0x0142, u'l'},
    {0x037E, u';'}, {0x1E9E, u'S'},  {0x1FBE, 0x03B9}, {0x1FEF, u'`'}, {0x2013, u'-'},
    {0x2014, u'-'}, {0x2018, u'\''}, {0x2019, u'\''},  {0x2022, u'*'}, {0x2126, 0x03A9},
    {0x212A, u'K'},
};

constexpr char16_t kFirstFullWidth = 0xFF01, kLastFullWidth = 0xFF5E;
constexpr char16_t kFullWidthToAscii = kFirstFullWidth - u'!';

void fillAccentMap(AccentMap& map) {
  for (std::size_t unit = 0; unit < map.size(); ++unit) map[unit] = static_cast<char16_t>(unit);
  for (const DecompositionEntry& row : decompositionTable) {
    if (foldsToBaseLetter(row.composed)) map[row.composed] = row.units[0];
  }
  for (const auto& [unit, lookAlike] : kLookAlikes) map[unit] = lookAlike;
  for (char16_t unit = kFirstFullWidth; unit <= kLastFullWidth; ++unit) {
    map[unit] = static_cast<char16_t>(unit - kFullWidthToAscii);
  }
}

AccentMap accentMapStorage;
std::once_flag accentMapOnce;
std::atomic<bool> accentMapBuilt{false};

constexpr char16_t kSpelledOutFrom = 0xBC;

std::u16string_view asciiSpelling(char16_t unit) {
  switch (unit) {
    case 0x00BC:
      return u"1/4";
    case 0x00BD:
      return u"1/2";
    case 0x00BE:
      return u"3/4";
    case 0x00C6:
      return u"AE";
    case 0x00E6:
      return u"ae";
    case 0x2150:
      return u"1/7";
    case 0x2151:
      return u"1/9";
    case 0x2152:
      return u"1/10";
    case 0x2153:
      return u"1/3";
    case 0x2154:
      return u"2/3";
    case 0x2155:
      return u"1/5";
    case 0x2156:
      return u"2/5";
    case 0x2157:
      return u"3/5";
    case 0x2158:
      return u"4/5";
    case 0x2159:
      return u"1/6";
    case 0x215A:
      return u"5/6";
    case 0x215B:
      return u"1/8";
    case 0x215C:
      return u"3/8";
    case 0x215D:
      return u"5/8";
    case 0x215E:
      return u"7/8";
    case 0x2189:
      return u"0/3";
    default:
      return {};
  }
}

constexpr bool isCombiningMark(char16_t unit) {
  return inRange(unit, 0x0300, 0x036F);
}

char16_t upperCasedAscii(char16_t unit) {
  return inRange(unit, u'a', u'z') ? static_cast<char16_t>(unit - (u'a' - u'A')) : unit;
}

}  // namespace

void buildAccentMap() {
  std::call_once(accentMapOnce, [] {
    fillAccentMap(accentMapStorage);
    accentMapBuilt.store(true, std::memory_order_release);
  });
}

const AccentMap* builtAccentMap() noexcept {
  return accentMapBuilt.load(std::memory_order_acquire) ? &accentMapStorage : nullptr;
}

std::u16string removeAccents(std::u16string_view text, bool ignoreCase, const AccentMap* map) {
  std::u16string reduced;
  reduced.reserve(text.size() + text.size() / 4);
  for (const char16_t unit : text) {
    if (unit >= kSpelledOutFrom) {
      if (isCombiningMark(unit)) continue;
      if (const auto spelling = asciiSpelling(unit); !spelling.empty()) {
        reduced.append(spelling);
        continue;
      }
    }
    reduced.push_back(map ? (*map)[unit] : u'\0');
  }
  if (ignoreCase) std::transform(reduced.begin(), reduced.end(), reduced.begin(), upperCasedAscii);
  return reduced;
}

}  // namespace zel::strings
