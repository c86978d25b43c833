// The operating-system layer: every platform must give the same observable results.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <set>
#include <span>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "support/environment.h"

namespace zel::platform {
namespace {

constexpr std::uint8_t kFill = 0xAB;

bool allBytesAre(const void* block, std::size_t size, std::uint8_t value) {
  const auto* bytes = static_cast<const std::uint8_t*>(block);
  return std::all_of(bytes, bytes + size, [value](std::uint8_t b) { return b == value; });
}

TEST(Platform, AllocationsAreZeroFilledAndDistinct) {
  std::vector<ZeroedBlock> blocks;
  for (const std::size_t size : {0U, 1U, 17U, 4096U, 1U << 20}) {
    ZeroedBlock block(allocateZeroed(size));
    ASSERT_NE(block, nullptr) << size;
    EXPECT_TRUE(allBytesAre(block.get(), size, 0)) << size;
    std::memset(block.get(), kFill, size);
    blocks.push_back(std::move(block));
  }
  // Even empty requests give blocks of their own.
  std::set<void*> addresses;
  for (const ZeroedBlock& block : blocks) addresses.insert(block.get());
  EXPECT_EQ(addresses.size(), blocks.size());
}

TEST(Platform, ResizingKeepsTheContentAndZeroFillsTheGrowth) {
  const struct {
    std::size_t from, to;
  } cases[] = {{1, 2}, {16, 4096}, {4096, 16}, {100, 100}, {0, 64}, {64, 0}, {1000, 1 << 20}};
  for (const auto& c : cases) {
    void* block = allocateZeroed(c.from);
    ASSERT_NE(block, nullptr);
    std::memset(block, kFill, c.from);
    void* resized = resizeZeroed(block, c.from, c.to);
    ASSERT_NE(resized, nullptr) << c.from << " -> " << c.to;
    const ZeroedBlock owner(resized);
    const std::size_t kept = std::min(c.from, c.to);
    EXPECT_TRUE(allBytesAre(resized, kept, kFill)) << c.from << " -> " << c.to;
    EXPECT_TRUE(allBytesAre(static_cast<std::uint8_t*>(resized) + kept, c.to - kept, 0))
        << c.from << " -> " << c.to;
  }
  const ZeroedBlock fresh(resizeZeroed(nullptr, 0, 32));
  ASSERT_NE(fresh, nullptr);
  EXPECT_TRUE(allBytesAre(fresh.get(), 32, 0));
}

TEST(Platform, RandomBytesCoverEveryValue) {
  std::vector<std::uint8_t> bytes(1 << 16);
  secureRandomBytes(bytes);
  std::bitset<256> seen;
  for (const std::uint8_t b : bytes) seen.set(b);
  // 65536 fair draws miss one of 256 values with a chance of about 256 * e^-256.
  EXPECT_TRUE(seen.all()) << seen.count() << " values seen";
}

TEST(Platform, RandomBytesFillEveryPositionOfShortRequests) {
  // Sizes around the 4 bytes of one draw: the last byte must be drawn too, not left as it was.
  constexpr int kRounds = 400;
  for (const std::size_t size : {1U, 3U, 4U, 5U, 7U, 9U}) {
    std::vector<std::set<std::uint8_t>> valuesAt(size);
    for (int round = 0; round < kRounds; ++round) {
      std::vector<std::uint8_t> bytes(size, kFill);
      secureRandomBytes(bytes);
      for (std::size_t i = 0; i < size; ++i) valuesAt[i].insert(bytes[i]);
    }
    for (std::size_t i = 0; i < size; ++i)
      EXPECT_GT(valuesAt[i].size(), 100U) << "size " << size << ", position " << i;
  }
  secureRandomBytes({});  // nothing to fill is no failure
}

TEST(Platform, ThreadIdsStayPerThreadAndDiffer) {
  const std::uint32_t main = currentThreadId();
  EXPECT_EQ(currentThreadId(), main);
  std::array<std::uint32_t, 2> others{};
  std::thread first([&] { others[0] = currentThreadId(); });
  std::thread second([&] { others[1] = currentThreadId(); });
  first.join();
  second.join();
  EXPECT_NE(others[0], main);
  EXPECT_NE(others[1], main);
  EXPECT_NE(others[0], others[1]);
  EXPECT_NE(currentProcessId(), 0U);
  EXPECT_EQ(currentProcessId(), currentProcessId());
}

int sign(int value) {
  return (value > 0) - (value < 0);
}

TEST(Platform, ComparesAsciiLettersWithoutCase) {
  const struct {
    const char* a;
    const char* b;
    std::size_t count;
    int sign;
  } cases[] = {
      {"double", "DOUBLE", 7, 0},
      {"DoUbLe", "dOuBlE", 6, 0},
      {"abc", "abd", 3, -1},
      {"ABD", "abc", 3, 1},
      {"abcX", "ABCy", 3, 0},
      {"ab", "abc", 3, -1},
      {"", "", 1, 0},
      {"x", "y", 0, 0},
      // Letters compare as lower case: "_" (0x5F) lies between the upper and lower cases.
      {"_", "A", 1, -1},
      {"[", "a", 1, -1},
      {"Z", "[", 1, 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(sign(compareIgnoringCase(c.a, c.b, c.count)), c.sign)
        << '"' << c.a << "\" vs \"" << c.b << "\" over " << c.count;
}

TEST(Platform, ReadsTheEnvironmentOfTheProcess) {
  constexpr const char* kName = "ZEL_PLATFORM_TEST_VARIABLE";
  for (const char* value : {"1", "a b=c", "yes"}) {
    zeltest::setEnvironmentVariable(kName, value);
    EXPECT_EQ(environmentVariable(kName), value);
  }
  zeltest::setEnvironmentVariable(kName, nullptr);
  EXPECT_EQ(environmentVariable(kName), std::nullopt);
}

}  // namespace
}  // namespace zel::platform
