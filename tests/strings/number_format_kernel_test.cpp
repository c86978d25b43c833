#include "strings/number_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace zel::strings {
namespace {

struct TrimCase {
  double value;
  const char* text;
};

TEST(NumberFormatKernel, TrimsFixedTextInThreeStages) {
  const TrimCase cases[] = {
      {0.5, "0.50"},
      {2.5, "2.50"},
      {1000.0, "1000.0"},
      {1.0 / 3.0, "0.3"},
      {0.0, "0.0"},
      {-0.5, "-0.50"},
      {100.25, "100.250"},
      // Stored as 0.00123399999...: the cut keeps 19 characters, then the nines collapse.
      {1234 * 1e-6, "0.0012339"},
      {0.001234, "0.0012340"},
      {1.1, "1.10"},
      {0.1, "0.10"},
      {2.55, "2.549"},
      {1e20, "100000000000000000000.0"},
      {5e-324, "0.0"},
      // Fifteen counted characters before the point: the fraction goes.
      {123456789123456.75, "123456789123456"},
      {-12345678912345.5, "-12345678912345"},
      // An inner zero is not counted, so this one keeps a fraction digit.
      {123456789012345.6, "123456789012345.5"},
      {std::numeric_limits<double>::infinity(), "inf"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(formatTrimmedFixed(c.value), c.text) << c.value;
  }
}

struct ScientificCase {
  double value;
  std::int64_t digits;
  const char* text;
};

TEST(NumberFormatKernel, FormatsScientificWithClampedDigits) {
  const ScientificCase cases[] = {
      {1234.5, 2, "1.23e+03"},
      {1234.5, 0, "1e+03"},
      {1234.5, -5, "1e+03"},
      {-0.0, 3, "-0.000e+00"},
      {1e300, 2, "1.00e+300"},
      {0.000123, 1, "1.2e-04"},
      {1234.5, std::numeric_limits<std::int64_t>::min(), "1e+03"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(formatScientific(c.value, c.digits), c.text) << c.digits;
  }
}

TEST(NumberFormatKernel, CapsScientificTextAt499Characters) {
  const std::string expected = "1.2345" + std::string(493, '0');
  for (const std::int64_t digits :
       {std::int64_t{498}, std::int64_t{1000}, std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(formatScientific(1234.5, digits), expected) << digits;
  }
}

}  // namespace
}  // namespace zel::strings
