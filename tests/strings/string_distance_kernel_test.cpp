#include "strings/string_distance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "base/out_of_memory_error.h"

namespace zel::strings {
namespace {

struct DistanceCase {
  std::u16string a, b;
  double expected;
};

TEST(StringDistanceKernel, LevenshteinDividesByTheShorterLength) {
  const DistanceCase cases[] = {
      {u"kitten", u"sitting", 0.5},
      {u"ab", u"ba", 0.5},
      {u"same", u"same", 0.0},
      {u"", u"abc", 1.0},
      {u"abc", u"", 1.0},
      {u"", u"", 1.0},
      {u"a", u"abcd", 3.0},
      // Optimal string alignment: no edit of a transposed pair, so 3 and not 2.
      {u"ca", u"abc", 1.5},
      // Characters outside the BMP are two units; only the low surrogates differ.
      {u"a\U0001F600", u"a\U0001F601", 1.0 / (3.0 / 1.0)},
      // 1 / (10 / 9) is one unit in the last place below 9 / 10.
      {u"aaaaaaaaaa", u"bbbbbbbbba", 1.0 / (10.0 / 9.0)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(levenshteinDistance(c.a, c.b), c.expected);
    EXPECT_EQ(levenshteinDistance(c.b, c.a), c.expected);
  }
  EXPECT_NE(levenshteinDistance(u"aaaaaaaaaa", u"bbbbbbbbba"), 0.9);
}

double jaroWinkler(double matches, double n, double m, double halfTranspositions, int prefix) {
  const double jaro = (matches / m + matches / n + (matches - halfTranspositions) / matches) / 3.0;
  return jaro > 0.7 && prefix > 0 ? jaro + prefix * 0.1 * (1.0 - jaro) : jaro;
}

TEST(StringDistanceKernel, JaroWinklerFollowsTheMatchWindow) {
  const DistanceCase cases[] = {
      {u"MARTHA", u"MARHTA", 1.0 - jaroWinkler(6, 6, 6, 1, 3)},
      {u"DIXON", u"DICKSONX", 1.0 - jaroWinkler(4, 5, 8, 0, 2)},
      {u"abcdefgh", u"abcdefgx", 1.0 - jaroWinkler(7, 8, 8, 0, 4)},
      // Below the boost threshold the shared prefix does not count.
      {u"abcdef", u"abxyzw", 1.0 - (2.0 / 6 + 2.0 / 6 + 1.0) / 3.0},
      {u"same", u"same", 0.0},
      {u"", u"", 0.0},
      {u"", u"abc", 1.0},
      {u"abc", u"", 1.0},
      {u"abc", u"xyz", 1.0},
      // Window 0: each unit may only match the unit at its own position.
      {u"ab", u"ba", 1.0},
      {u"\U0001F600", u"\U0001F601", 1.0 - (0.5 + 0.5 + 1.0) / 3.0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(jaroWinklerDistance(c.a, c.b), c.expected)
        << std::string(c.a.begin(), c.a.end()) << " " << std::string(c.b.begin(), c.b.end());
  }
}

TEST(StringDistanceKernel, OutOfMemoryMessageShowsThe32BitByteCount) {
  EXPECT_STREQ(OutOfMemoryError::forBytes(24).what(), "Failed to allocate 24 bytes of memory.");
  // Only a 64-bit size_t can carry a count beyond 32 bits.
  if constexpr (sizeof(std::size_t) > sizeof(std::uint32_t)) {
    constexpr std::uint64_t kBeyond32Bits = 0x100000005;
    EXPECT_STREQ(OutOfMemoryError::forBytes(static_cast<std::size_t>(kBeyond32Bits)).what(),
                 "Failed to allocate 5 bytes of memory.");
  }
  EXPECT_STREQ(OutOfMemoryError::forBytes(0xFFFFFFFF).what(),
               "Failed to allocate -1 bytes of memory.");
}

// The matrix recurrence exactly as described, kept as the reference for the fast paths.
double referenceLevenshtein(std::u16string_view a, std::u16string_view b) {
  const std::size_t n = a.size(), m = b.size();
  if (n == 0 || m == 0) return 1.0;
  std::vector<long long> cells((n + 1) * (m + 1));
  const auto d = [&cells, m](std::size_t i, std::size_t j) -> long long& {
    return cells[i * (m + 1) + j];
  };
  for (std::size_t i = 0; i <= n; ++i) d(i, 0) = static_cast<long long>(i);
  for (std::size_t j = 0; j <= m; ++j) d(0, j) = static_cast<long long>(j);
  for (std::size_t i = 1; i <= n; ++i) {
    for (std::size_t j = 1; j <= m; ++j) {
      const long long cost = a[i - 1] == b[j - 1] ? 0 : 1;
      d(i, j) = std::min({d(i - 1, j - 1) + cost, d(i - 1, j) + 1, d(i, j - 1) + 1});
      if (i >= 2 && j >= 2 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d(i, j) = std::min(d(i, j), d(i - 2, j - 2) + cost);
      }
    }
  }
  return 1.0 / (static_cast<double>(std::min(n, m)) / static_cast<double>(d(n, m)));
}

double referenceJaroWinkler(std::u16string_view a, std::u16string_view b) {
  const long n = static_cast<long>(a.size()), m = static_cast<long>(b.size());
  if (n == 0) return m == 0 ? 0.0 : 1.0;
  std::vector<char> flagA(static_cast<std::size_t>(n) + 4), flagB(static_cast<std::size_t>(m) + 4);
  const long window = std::max(0L, std::max(n, m) / 2 - 1);
  long matches = 0;
  for (long i = 0; i < n; ++i) {
    for (long j = std::max(0L, i - window); j < std::min(m, i + window + 1); ++j) {
      if (!flagB[j] && a[i] == b[j]) {
        flagA[i] = flagB[j] = 1;
        ++matches;
        break;
      }
    }
  }
  if (matches == 0) return 1.0;
  long t = 0;
  for (long i = 0, j = 0; i < n; ++i) {
    if (!flagA[i]) continue;
    while (!flagB[j]) ++j;
    if (a[i] != b[j++]) ++t;
  }
  const double mm = static_cast<double>(matches);
  const double jaro = (mm / static_cast<double>(m) + mm / static_cast<double>(n) +
                       static_cast<double>(matches - t / 2) / mm) /
                      3.0;
  double similarity = jaro;
  if (jaro > 0.7) {
    long prefix = 0;
    while (prefix < std::min({m, n, 4L}) && a[prefix] == b[prefix]) ++prefix;
    if (prefix > 0) similarity = jaro + static_cast<double>(prefix) * 0.1 * (1.0 - jaro);
  }
  return 1.0 - similarity;
}

// What random texts are made of: each piece one unit or, outside the BMP, a surrogate pair.
struct Alphabet {
  std::string name;
  std::vector<std::u16string> pieces;
};

std::vector<Alphabet> alphabets() {
  std::vector<Alphabet> all{
      {"two letters", {u"a", u"b"}},
      {"five letters", {u"a", u"b", u"c", u"d", u"e"}},
      {"letters and Greek", {u"a", u"b", u"c", u"\u03B1", u"\u03B2"}},
      // Pairs sharing their high surrogate, next to a letter.
      {"beyond the BMP", {u"\U0001F600", u"\U0001F601", u"\U0001F642", u"a"}},
      {"wide", {}},
  };
  // Units from the whole 16-bit range, lone surrogates included: many distinct units that
  // collide in any small table.
  constexpr int kWideUnits = 300;
  std::mt19937 random(16);
  for (int i = 0; i < kWideUnits; ++i) {
    all.back().pieces.emplace_back(1, static_cast<char16_t>(random()));
  }
  return all;
}

std::u16string randomText(std::mt19937& random, std::size_t length, const Alphabet& alphabet) {
  std::u16string text;
  while (text.size() < length) text += alphabet.pieces[random() % alphabet.pieces.size()];
  text.resize(length);
  return text;
}

// A few adjacent swaps, substitutions, insertions and deletions.
std::u16string edited(std::u16string text, std::mt19937& random) {
  for (int edits = static_cast<int>(random() % 12); edits > 0 && !text.empty(); --edits) {
    const std::size_t at = random() % text.size();
    switch (random() % 4) {
      case 0:
        if (at + 1 < text.size()) std::swap(text[at], text[at + 1]);
        break;
      case 1:
        text[at] = u'z';
        break;
      case 2:
        text.insert(at, 1, u'y');
        break;
      default:
        text.erase(at, 1);
        break;
    }
  }
  return text;
}

TEST(StringDistanceKernel, RandomPairsAgreeWithTheReferences) {
  std::mt19937 random(2024);
  for (const auto& alphabet : alphabets()) {
    for (int round = 0; round < 600; ++round) {
      // Long enough in a third of the rounds to need several words per bit vector.
      const std::size_t maxLength = round % 3 == 0 ? 200 : 40;
      const std::u16string a = randomText(random, random() % (maxLength + 1), alphabet);
      const std::u16string b = random() % 2
                                   ? randomText(random, random() % (maxLength + 1), alphabet)
                                   : edited(a, random);
      ASSERT_EQ(levenshteinDistance(a, b), referenceLevenshtein(a, b)) << alphabet.name << round;
      ASSERT_EQ(jaroWinklerDistance(a, b), referenceJaroWinkler(a, b)) << alphabet.name << round;
    }
  }
}

// Texts whose differing middles are one unit short of, exactly or one unit beyond a word, behind
// a shared prefix and before a shared suffix of either length, so that both the stripped and the
// whole lengths straddle the one-word paths.
TEST(StringDistanceKernel, WordEdgesAgreeWithTheReferences) {
  constexpr std::size_t kWordUnits = 64;
  std::mt19937 random(64);
  for (const auto& alphabet : alphabets()) {
    for (const std::size_t affix : {std::size_t{0}, std::size_t{3}}) {
      for (std::size_t lengthA = kWordUnits - 1; lengthA <= kWordUnits + 1; ++lengthA) {
        for (std::size_t lengthB = kWordUnits - 1; lengthB <= kWordUnits + 1; ++lengthB) {
          const std::u16string prefix = randomText(random, affix, alphabet);
          const std::u16string suffix = randomText(random, affix, alphabet);
          std::u16string middleA = randomText(random, lengthA, alphabet);
          // Half the time b's middle is a's with a few neighbours swapped.
          std::u16string middleB = randomText(random, lengthB, alphabet);
          if (random() % 2) {
            middleB = middleA;
            middleB.resize(lengthB, u'x');
            for (int swaps = 0; swaps < 4; ++swaps) {
              const std::size_t at = random() % (lengthB - 1);
              std::swap(middleB[at], middleB[at + 1]);
            }
          }
          // A shared unit beyond the byte range, for the letter alphabets the only one in b.
          middleA[lengthA / 2] = middleB[lengthB / 2] = u'\u2020';
          // Ends that no alphabet has keep the middles from being stripped further.
          middleA.front() = u'<';
          middleA.back() = u'>';
          middleB.front() = u'[';
          middleB.back() = u']';
          const std::u16string a = prefix + middleA + suffix, b = prefix + middleB + suffix;
          const std::string trace =
              alphabet.name + " " + std::to_string(a.size()) + "/" + std::to_string(b.size());
          ASSERT_EQ(levenshteinDistance(a, b), referenceLevenshtein(a, b)) << trace;
          ASSERT_EQ(levenshteinDistance(b, a), referenceLevenshtein(b, a)) << trace;
          ASSERT_EQ(jaroWinklerDistance(a, b), referenceJaroWinkler(a, b)) << trace;
          ASSERT_EQ(jaroWinklerDistance(b, a), referenceJaroWinkler(b, a)) << trace;
        }
      }
    }
  }
}

// Every pair of texts over a three-unit alphabet (one unit beyond the byte range) up to six
// units: shared prefixes and suffixes, transpositions next to them, and every window size.
TEST(StringDistanceKernel, EverySmallPairAgreesWithTheReferences) {
  std::vector<std::u16string> texts{u""};
  constexpr std::size_t kLongest = 6;
  for (std::size_t begin = 0, length = 1; length <= kLongest; ++length) {
    const std::size_t end = texts.size();
    for (std::size_t i = begin; i < end; ++i) {
      for (const char16_t unit : {u'a', u'b', u'\x3B1'}) texts.push_back(texts[i] + unit);
    }
    begin = end;
  }
  for (const auto& a : texts) {
    for (const auto& b : texts) {
      ASSERT_EQ(levenshteinDistance(a, b), referenceLevenshtein(a, b));
      ASSERT_EQ(jaroWinklerDistance(a, b), referenceJaroWinkler(a, b));
    }
  }
}

}  // namespace
}  // namespace zel::strings
