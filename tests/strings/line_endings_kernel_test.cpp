#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "strings/line_endings.h"

namespace zel::strings {
namespace {

std::string convert(std::string_view text, std::string_view newLine) {
  return replaceLineEndings(text, newLine, false, [] {});
}

TEST(LineEndingsKernel, PairsCrWithLfEitherWay) {
  struct Case {
    std::string_view text, newLine, expected;
  };
  for (const Case& c : std::vector<Case>{{"a\r\nb\n\rc\r\rd", "\n", "a\nb\nc\n\nd"},
                                         {"\r\n\r\n", "<br>", "<br><br>"},
                                         {"\n\r\n", "\r\n", "\r\n\r\n"},
                                         {"\n\n\r\r", "|", "|||"},
                                         {"a\r", "\n", "a\n"},
                                         {"\nb", "\r", "\rb"},
                                         {"a\r\nb", "", "ab"},
                                         {"no breaks", "\n", "no breaks"},
                                         {"", "\n", ""},
                                         {"0123456789abcdef\r\n0123456789abcdef\n\r0123456\r", "-",
                                          "0123456789abcdef-0123456789abcdef-0123456-"}}) {
    EXPECT_EQ(convert(c.text, c.newLine), c.expected) << c.text;
  }
}

// Yields fall on the read positions whose address is a multiple of the stride.
class LineEndingsYield : public ::testing::Test {
 protected:
  static constexpr std::size_t kSize = std::size_t{64} << 20;
  std::string text = std::string(kSize, 'x');
  int yields = 0;

  std::uintptr_t start() const { return reinterpret_cast<std::uintptr_t>(text.data()); }
  // Multiples of the stride in (start, start + size]: every step's end is a read position.
  std::uintptr_t boundariesCrossed() const {
    return (start() + kSize) / kLineEndingYieldStride - start() / kLineEndingYieldStride;
  }
  std::string run(bool yield) {
    return replaceLineEndings(text, "\n", yield, [this] { ++yields; });
  }
};

TEST_F(LineEndingsYield, YieldsAboutEvery16MiBWhenAsked) {
  EXPECT_EQ(run(true).size(), kSize);
  EXPECT_GE(yields, 3);
  EXPECT_EQ(static_cast<std::uintptr_t>(yields), boundariesCrossed());
}

TEST_F(LineEndingsYield, NeverYieldsWhenNotAsked) {
  EXPECT_EQ(run(false).size(), kSize);
  EXPECT_EQ(yields, 0);
}

TEST_F(LineEndingsYield, PairAcrossAYieldAddressSkipsThatYield) {
  const std::uintptr_t boundary = (start() / kLineEndingYieldStride + 1) * kLineEndingYieldStride;
  const std::size_t lf = boundary - start();
  text[lf - 1] = '\r';
  text[lf] = '\n';
  const std::string out = run(true);
  EXPECT_EQ(out.size(), kSize - 1);
  EXPECT_EQ(out.substr(lf - 2, 3), "x\nx");
  EXPECT_EQ(static_cast<std::uintptr_t>(yields), boundariesCrossed() - 1);
}

}  // namespace
}  // namespace zel::strings
