#include "strings/string_distance.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "base/out_of_memory_error.h"

namespace zel::strings {
namespace {

constexpr std::size_t kWordBits = 64;
// Units below this have a table slot of their own; the others are hashed.
constexpr std::size_t kByteRangeUnits = 256;

// Fibonacci hashing: the top bits of the unit times 2^32 over the golden ratio.
std::size_t hashedSlot(char16_t unit, int slotBits) noexcept {
  constexpr std::uint32_t kFibonacciMultiplier = 0x9E3779B1U;
  constexpr int kProductBits = 32;
  return (unit * kFibonacciMultiplier) >> (kProductBits - slotBits);
}

template <typename T>
std::vector<T> allocateScratch(std::size_t count, T initial = T{}) {
  try {
    return std::vector<T>(count, initial);
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError::forBytes(count * sizeof(T));
  }
}

// For every unit of the pattern, a bit vector of the positions where it occurs, in words of 64.
// Slot 0 is all zeros and stands for every unit the pattern does not contain.
class MatchVectors {
 public:
  explicit MatchVectors(std::u16string_view pattern)
      : words_((pattern.size() + kWordBits - 1) / kWordBits) {
    auto units = allocateScratch<char16_t>(pattern.size());
    std::copy(pattern.begin(), pattern.end(), units.begin());
    std::sort(units.begin(), units.end());
    units.erase(std::unique(units.begin(), units.end()), units.end());
    const auto firstHigh =
        std::lower_bound(units.begin(), units.end(), static_cast<char16_t>(lowSlots_.size()));
    for (auto unit = units.begin(); unit != firstHigh; ++unit) {
      lowSlots_[*unit] = static_cast<std::uint32_t>(++lowCount_);
    }
    highUnits_ = allocateScratch<char16_t>(static_cast<std::size_t>(units.end() - firstHigh));
    std::copy(firstHigh, units.end(), highUnits_.begin());
    bits_ = allocateScratch<std::uint64_t>((units.size() + 1) * words_);
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      bits_[slotOf(pattern[i]) * words_ + i / kWordBits] |= std::uint64_t{1} << (i % kWordBits);
    }
  }

  std::size_t words() const { return words_; }
  const std::uint64_t* of(char16_t unit) const { return &bits_[slotOf(unit) * words_]; }

 private:
  std::size_t slotOf(char16_t unit) const {
    if (unit < lowSlots_.size()) return lowSlots_[unit];
    const auto found = std::lower_bound(highUnits_.begin(), highUnits_.end(), unit);
    if (found == highUnits_.end() || *found != unit) return 0;
    return lowCount_ + 1 + static_cast<std::size_t>(found - highUnits_.begin());
  }

  std::size_t words_;
  std::array<std::uint32_t, kByteRangeUnits> lowSlots_{};
  std::size_t lowCount_ = 0;
  std::vector<char16_t> highUnits_;
  std::vector<std::uint64_t> bits_;
};

// A bit per position of each unit of a text of at most one word's length, kept on the stack so
// that short distances need no heap. Units below 256 have a slot each, the others share an open
// addressing table in which an empty slot has no bits. Nothing is cleared up front but a bit per
// low slot: a low slot is written when its unit first appears, the shared table when the first
// unit beyond the byte range arrives, so a short text costs little more than its own units.
class ShortMatchTable {
 public:
  explicit ShortMatchTable(std::u16string_view text) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char16_t unit = text[i];
      const std::uint64_t bit = std::uint64_t{1} << i;
      if (unit < kByteRangeUnits) {
        const std::uint64_t seen = std::uint64_t{1} << (unit % kWordBits);
        if (lowSeen_[unit / kWordBits] & seen) {
          low_[unit] |= bit;
        } else {
          lowSeen_[unit / kWordBits] |= seen;
          low_[unit] = bit;
        }
        continue;
      }
      if (!hasHigh_) {
        highBits_.fill(0);
        hasHigh_ = true;
      }
      const std::size_t slot = highSlotOf(unit);
      highKeys_[slot] = unit;
      highBits_[slot] |= bit;
    }
  }

  std::uint64_t of(char16_t unit) const noexcept {
    if (unit < kByteRangeUnits) {
      return (lowSeen_[unit / kWordBits] >> (unit % kWordBits)) & 1 ? low_[unit] : 0;
    }
    return hasHigh_ ? highBits_[highSlotOf(unit)] : 0;
  }

 private:
  // Twice as many slots as a word has positions, so probes stay short.
  static constexpr std::size_t kSlots = 2 * kWordBits;

  // The unit's slot, or the empty slot where it would go.
  std::size_t highSlotOf(char16_t unit) const noexcept {
    std::size_t slot = hashedSlot(unit, std::countr_zero(kSlots));
    while (highBits_[slot] != 0 && highKeys_[slot] != unit) slot = (slot + 1) % kSlots;
    return slot;
  }

  std::array<std::uint64_t, kByteRangeUnits / kWordBits> lowSeen_{};
  std::array<std::uint64_t, kByteRangeUnits> low_;
  bool hasHigh_ = false;
  std::array<char16_t, kSlots> highKeys_;
  std::array<std::uint64_t, kSlots> highBits_;
};

// The single-word form of the bit-parallel distance below, for patterns of at most 64 units.
std::size_t shortAlignmentDistance(std::u16string_view pattern, std::u16string_view text) noexcept {
  const ShortMatchTable match(pattern);
  const std::uint64_t lastBit = std::uint64_t{1} << (pattern.size() - 1);
  std::uint64_t positive = ~std::uint64_t{0}, negative = 0, diagonal = 0, previousMatch = 0;
  std::size_t distance = pattern.size();
  for (const char16_t unit : text) {
    const std::uint64_t eq = match.of(unit);
    const std::uint64_t transposed = ((~diagonal & eq) << 1) & previousMatch;
    const std::uint64_t d0 = (((eq & positive) + positive) ^ positive) | eq | negative | transposed;
    const std::uint64_t hp = negative | ~(d0 | positive);
    const std::uint64_t hn = d0 & positive;
    distance += (hp & lastBit) ? 1 : 0;
    distance -= (hn & lastBit) ? 1 : 0;
    const std::uint64_t hpShifted = (hp << 1) | 1;
    const std::uint64_t hnShifted = hn << 1;
    positive = hnShifted | ~(d0 | hpShifted);
    negative = hpShifted & d0;
    diagonal = d0;
    previousMatch = eq;
  }
  return distance;
}

// Bit-parallel optimal string alignment distance (Hyyro 2003): one column of the distance
// matrix per text unit, as vertical deltas packed into words.
std::size_t alignmentDistance(std::u16string_view pattern, std::u16string_view text) {
  const MatchVectors match(pattern);
  const std::size_t words = match.words();
  auto positive = allocateScratch<std::uint64_t>(words, ~std::uint64_t{0});
  auto negative = allocateScratch<std::uint64_t>(words);
  auto diagonal = allocateScratch<std::uint64_t>(words);
  auto previousMatch = allocateScratch<std::uint64_t>(words);
  const std::uint64_t lastBit = std::uint64_t{1} << ((pattern.size() - 1) % kWordBits);
  std::size_t distance = pattern.size();

  for (const char16_t unit : text) {
    const std::uint64_t* matches = match.of(unit);
    std::uint64_t sumCarry = 0, transposeCarry = 0, raiseCarry = 1, lowerCarry = 0;
    for (std::size_t w = 0; w < words; ++w) {
      const std::uint64_t eq = matches[w], vp = positive[w], vn = negative[w];
      const std::uint64_t swappable = ~diagonal[w] & eq;
      const std::uint64_t transposed = ((swappable << 1) | transposeCarry) & previousMatch[w];
      transposeCarry = swappable >> (kWordBits - 1);

      const std::uint64_t addend = eq & vp;
      const std::uint64_t partial = addend + vp;
      const std::uint64_t sum = partial + sumCarry;
      sumCarry = (partial < addend || sum < partial) ? 1 : 0;

      const std::uint64_t d0 = (sum ^ vp) | eq | vn | transposed;
      const std::uint64_t hp = vn | ~(d0 | vp);
      const std::uint64_t hn = d0 & vp;
      if (w + 1 == words) {
        distance += (hp & lastBit) ? 1 : 0;
        distance -= (hn & lastBit) ? 1 : 0;
      }
      const std::uint64_t hpShifted = (hp << 1) | raiseCarry;
      const std::uint64_t hnShifted = (hn << 1) | lowerCarry;
      raiseCarry = hp >> (kWordBits - 1);
      lowerCarry = hn >> (kWordBits - 1);
      positive[w] = hnShifted | ~(d0 | hpShifted);
      negative[w] = hpShifted & d0;
      diagonal[w] = d0;
      previousMatch[w] = eq;
    }
  }
  return distance;
}

constexpr std::uint32_t kNoPosition = std::numeric_limits<std::uint32_t>::max();

// b's positions chained by unit, with a cursor per unit. The windows only move forward, so a
// unit's positions below the window are never wanted again, and the first free one in a window
// is never before the last one taken: a unit's cursor only moves forward too.
class PositionChains {
 public:
  explicit PositionChains(std::u16string_view text)
      : next_(allocateScratch<std::uint32_t>(text.size())) {
    lowCursors_.fill(kNoPosition);
    const auto highUnits = static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char16_t unit) { return !isLow(unit); }));
    if (highUnits > 0) {
      // At most half full, so probes stay short.
      const std::size_t slots = std::bit_ceil(2 * std::min(highUnits, kUnitValues));
      highSlotBits_ = std::countr_zero(slots);
      highKeys_ = allocateScratch<char32_t>(slots, kEmptyKey);
      highCursors_ = allocateScratch<std::uint32_t>(slots, kNoPosition);
    }
    for (std::size_t j = text.size(); j-- > 0;) {
      std::uint32_t& first = addedCursor(text[j]);
      next_[j] = first;
      first = static_cast<std::uint32_t>(j);
    }
  }

  // The first position of unit in [low, high) not taken before, taken now; high when none.
  std::size_t take(char16_t unit, std::size_t low, std::size_t high) noexcept {
    std::uint32_t* const cursor = cursorOf(unit);
    if (cursor == nullptr) return high;
    std::uint32_t position = *cursor;
    while (position < low) position = next_[position];
    if (position >= high) {
      *cursor = position;
      return high;
    }
    *cursor = next_[position];
    return position;
  }

 private:
  static constexpr std::size_t kUnitValues = std::size_t{1} << 16;
  static constexpr char32_t kEmptyKey = kUnitValues;

  static bool isLow(char16_t unit) noexcept { return unit < kByteRangeUnits; }

  // The high unit's slot, or the empty slot where it would go.
  std::size_t highSlotOf(char16_t unit) const noexcept {
    std::size_t slot = hashedSlot(unit, highSlotBits_);
    while (highKeys_[slot] != unit && highKeys_[slot] != kEmptyKey) {
      slot = (slot + 1) & (highKeys_.size() - 1);
    }
    return slot;
  }

  std::uint32_t& addedCursor(char16_t unit) noexcept {
    if (isLow(unit)) return lowCursors_[unit];
    const std::size_t slot = highSlotOf(unit);
    highKeys_[slot] = unit;
    return highCursors_[slot];
  }

  // Null when the text lacks the unit.
  std::uint32_t* cursorOf(char16_t unit) noexcept {
    if (isLow(unit)) return &lowCursors_[unit];
    if (highKeys_.empty()) return nullptr;
    const std::size_t slot = highSlotOf(unit);
    return highKeys_[slot] == kEmptyKey ? nullptr : &highCursors_[slot];
  }

  std::vector<std::uint32_t> next_;
  std::array<std::uint32_t, kByteRangeUnits> lowCursors_;
  std::vector<char32_t> highKeys_;
  std::vector<std::uint32_t> highCursors_;
  int highSlotBits_ = 0;
};

// The Jaro similarity from the matching counts, with the Winkler boost for a shared prefix.
double jaroWinkler(std::u16string_view a, std::u16string_view b, std::size_t matches,
                   std::size_t transpositions) noexcept {
  const std::size_t n = a.size(), m = b.size();
  const auto matched = static_cast<double>(matches);
  const double jaro = (matched / static_cast<double>(m) + matched / static_cast<double>(n) +
                       static_cast<double>(matches - transpositions / 2) / matched) /
                      3.0;
  if (jaro <= 0.7) return jaro;
  const std::size_t prefixLimit = std::min({m, n, std::size_t{4}});
  const auto prefix = static_cast<std::size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(prefixLimit), b.begin())
          .first -
      a.begin());
  if (prefix == 0) return jaro;
  return jaro + static_cast<double>(prefix) * 0.1 * (1.0 - jaro);
}

std::size_t matchWindow(std::size_t n, std::size_t m) noexcept {
  const std::size_t longer = std::max(n, m);
  return longer / 2 >= 1 ? longer / 2 - 1 : 0;
}

std::uint64_t bitsBelow(std::size_t count) noexcept {
  return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

std::size_t wordsFor(std::size_t units) noexcept {
  return (units + kWordBits - 1) / kWordBits;
}

void setBit(std::span<std::uint64_t> bits, std::size_t index) noexcept {
  bits[index / kWordBits] |= std::uint64_t{1} << (index % kWordBits);
}

// Pairs a's matched units with b's in order; both sets of flags hold the same number of bits.
std::size_t transpositions(std::u16string_view a, std::u16string_view b,
                           std::span<const std::uint64_t> matchedA,
                           std::span<const std::uint64_t> matchedB) noexcept {
  std::size_t count = 0, wordB = 0;
  std::uint64_t bitsB = matchedB.empty() ? 0 : matchedB[0];
  for (std::size_t wordA = 0; wordA < matchedA.size(); ++wordA) {
    for (std::uint64_t bitsA = matchedA[wordA]; bitsA != 0; bitsA &= bitsA - 1) {
      while (bitsB == 0) bitsB = matchedB[++wordB];
      const std::size_t i = wordA * kWordBits + static_cast<std::size_t>(std::countr_zero(bitsA));
      const std::size_t j = wordB * kWordBits + static_cast<std::size_t>(std::countr_zero(bitsB));
      bitsB &= bitsB - 1;
      count += a[i] != b[j] ? 1 : 0;
    }
  }
  return count;
}

// Both texts fit a word: the matched flags are words, and a unit's first free match in its window
// is the lowest bit left.
double shortJaroWinklerSimilarity(std::u16string_view a, std::u16string_view b) noexcept {
  const std::size_t n = a.size(), m = b.size();
  const std::size_t window = matchWindow(n, m);
  const ShortMatchTable positions(b);
  std::uint64_t matchedA = 0, matchedB = 0;
  std::size_t matches = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t low = i > window ? i - window : 0;
    const std::size_t high = std::min(m, i + window + 1);
    if (low >= high) break;
    const std::uint64_t free = positions.of(a[i]) & bitsBelow(high) & ~bitsBelow(low) & ~matchedB;
    if (free == 0) continue;
    matchedB |= free & (~free + 1);
    matchedA |= std::uint64_t{1} << i;
    ++matches;
  }
  if (matches == 0) return 0.0;
  return jaroWinkler(a, b, matches,
                     transpositions(a, b, std::span(&matchedA, 1), std::span(&matchedB, 1)));
}

// A failed allocation of the matched flags reports a byte per unit and four spare bytes: the
// count describes flags of a byte each, whatever their size here.
constexpr std::size_t kMatchFlagSlack = 4;

// The matched flags of a text, a bit per unit.
std::vector<std::uint64_t> allocateMatchFlags(std::size_t units) {
  try {
    return std::vector<std::uint64_t>(wordsFor(units));
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError::forBytes(units + kMatchFlagSlack);
  }
}

double jaroWinklerSimilarity(std::u16string_view a, std::u16string_view b) {
  const std::size_t n = a.size(), m = b.size();
  const std::size_t window = matchWindow(n, m);
  auto matchedA = allocateMatchFlags(n);
  auto matchedB = allocateMatchFlags(m);
  PositionChains positions(b);

  std::size_t matches = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t low = i > window ? i - window : 0;
    const std::size_t high = std::min(m, i + window + 1);
    // The windows only move forward: once past b's end, every later one is empty too.
    if (low >= high) break;
    const std::size_t j = positions.take(a[i], low, high);
    if (j == high) continue;
    setBit(matchedA, i);
    setBit(matchedB, j);
    ++matches;
  }
  if (matches == 0) return 0.0;
  return jaroWinkler(a, b, matches, transpositions(a, b, matchedA, matchedB));
}

}  // namespace

double levenshteinDistance(std::u16string_view a, std::u16string_view b) {
  if (a.empty() || b.empty()) return 1.0;
  const auto shorter = static_cast<double>(std::min(a.size(), b.size()));
  // A shared prefix or suffix never takes part in an optimal alignment.
  const std::size_t prefix = static_cast<std::size_t>(
      std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
  a.remove_prefix(prefix);
  b.remove_prefix(prefix);
  const std::size_t suffix = static_cast<std::size_t>(
      std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first - a.rbegin());
  a.remove_suffix(suffix);
  b.remove_suffix(suffix);
  if (a.size() > b.size()) std::swap(a, b);
  std::size_t distance = b.size();
  if (!a.empty()) {
    distance = a.size() <= kWordBits ? shortAlignmentDistance(a, b) : alignmentDistance(a, b);
  }
  if (distance == 0) return 0.0;
  return 1.0 / (shorter / static_cast<double>(distance));
}

double jaroWinklerDistance(std::u16string_view a, std::u16string_view b) {
  if (a.empty()) return b.empty() ? 0.0 : 1.0;
  if (b.empty()) return 1.0;
  const bool fitsAWord = a.size() <= kWordBits && b.size() <= kWordBits;
  return 1.0 - (fitsAWord ? shortJaroWinklerSimilarity(a, b) : jaroWinklerSimilarity(a, b));
}

}  // namespace zel::strings
