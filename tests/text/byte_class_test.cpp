#include <gtest/gtest.h>

#include <bitset>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "text/byte_class.h"
#include "text/simd_path.h"

namespace zel::text {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Members = std::bitset<ByteClass::kValues>;

std::size_t plainSearch(const Bytes& bytes, const Members& members) {
  std::size_t at = 0;
  while (at < bytes.size() && !members[bytes[at]]) ++at;
  return at;
}

ByteClass classOf(const Members& members) {
  return ByteClass([&](std::uint8_t b) { return members[b]; });
}

class ByteClassOnEachPath : public testing::TestWithParam<SimdPath> {
 protected:
  void SetUp() override { forceSimdPath(GetParam()); }
  void TearDown() override { forceSimdPath(supportedSimdPaths().back()); }
};

INSTANTIATE_TEST_SUITE_P(Paths, ByteClassOnEachPath,
                         testing::ValuesIn(std::vector<SimdPath>(supportedSimdPaths().begin(),
                                                                 supportedSimdPaths().end())),
                         [](const auto& path) { return std::string(simdPathName(path.param)); });

// Each byte value alone among every other value: at the end of every length up to 200 (so in
// every lane of every block and in the tails), at every position of 200 bytes, and absent.
TEST_P(ByteClassOnEachPath, FindsEverySingleValueAtEveryPosition) {
  constexpr std::size_t kLongest = 200;
  for (unsigned special = 0; special < ByteClass::kValues; ++special) {
    Members members;
    members.set(special);
    const ByteClass byteClass = classOf(members);
    Bytes others;
    for (std::size_t k = 0; others.size() < kLongest; ++k) {
      const auto b = static_cast<std::uint8_t>(special + 1 + k % (ByteClass::kValues - 1));
      others.push_back(b);
    }
    for (std::size_t length = 0; length <= kLongest; ++length) {
      Bytes bytes(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(length));
      ASSERT_EQ(findByteInClass(bytes, byteClass), length) << special;
      if (length == 0) continue;
      bytes.back() = static_cast<std::uint8_t>(special);
      ASSERT_EQ(findByteInClass(bytes, byteClass), length - 1) << special;
    }
    for (std::size_t at = 0; at < kLongest; ++at) {
      Bytes bytes = others;
      bytes[at] = static_cast<std::uint8_t>(special);
      bytes.back() = static_cast<std::uint8_t>(special);
      ASSERT_EQ(findByteInClass(bytes, byteClass), at) << special;
    }
  }
}

// Classes of every shape: a low range with or without gaps, the high half, single values; texts
// that hold members sparsely or densely.
TEST_P(ByteClassOnEachPath, RandomClassesAgreeWithAPlainSearch) {
  std::mt19937 random(97);
  for (int sample = 0; sample < 2000; ++sample) {
    Members members;
    const unsigned below = random() % 3 == 0 ? random() % 40 : 0;
    for (unsigned b = 0; b < below; ++b) members.set(b);
    for (unsigned n = random() % (ByteClass::kMaxGaps + 1); n > 0 && below > 0; --n) {
      members.reset(random() % below);
    }
    if (random() % 2 == 0) {
      for (unsigned b = ByteClass::kFirstHigh; b < ByteClass::kValues; ++b) members.set(b);
    }
    for (unsigned n = random() % (ByteClass::kMaxListed + 1); n > 0; --n) {
      members.set(random() % ByteClass::kValues);
    }
    Bytes bytes(random() % 300);
    const unsigned density = 1 + random() % 200;
    for (auto& b : bytes) {
      b = static_cast<std::uint8_t>(random());
      while (members[b] && random() % density != 0) b = static_cast<std::uint8_t>(random());
    }
    ASSERT_EQ(findByteInClass(bytes, classOf(members)), plainSearch(bytes, members)) << sample;
  }
}

TEST(ByteClass, RefusesMoreSingleValuesThanItHolds) {
  const auto everyOther = [](std::uint8_t b) { return b % 2 == 1; };
  EXPECT_THROW(ByteClass{everyOther}, std::invalid_argument);
  const auto nine = [](std::uint8_t b) { return b >= 'a' && b < 'a' + ByteClass::kMaxListed + 1; };
  EXPECT_THROW(ByteClass{nine}, std::invalid_argument);
}

}  // namespace
}  // namespace zel::text
