// Numbers as ASCII text and the two string distances through the built plug-in.
#include <optional>
#include <string>
#include <string_view>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using zeltest::HostString;
using zeltest::makeArgument;
using zeltest::utf16Bytes;

class NumbersAndDistanceTest : public zeltest::PluginFixture {};

TEST_F(NumbersAndDistanceTest, NumbersComeBackAsAsciiText) {
  constexpr const char* kStr = "StrZEL(d as double) as string";
  constexpr const char* kScientific = "ScientificStrZEL(d as double, digits as integer) as string";
  const struct {
    REALstring made;
    std::string text;
  } cases[] = {
      {zelhost::call<REALstring>(kStr, 0.5), "0.50"},
      {zelhost::call<REALstring>(kStr, -12345678912345.5), "-12345678912345"},
      {zelhost::call<REALstring>(kScientific, 1234.5, RBInteger{2}), "1.23e+03"},
      {zelhost::call<REALstring>(kScientific, 1234.5, RBInteger{-1}), "1e+03"},
      // 499 characters at most: the exponent of a long fraction is cut off.
      {zelhost::call<REALstring>(kScientific, 1234.5, RBInteger{1000}),
       "1.2345" + std::string(493, '0')},
  };
  EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);
  for (const auto& c : cases) {
    const HostString result(c.made);
    EXPECT_EQ(result.bytes(), c.text);
    EXPECT_EQ(result.encoding(), encoding::kASCII);
  }
}

TEST_F(NumbersAndDistanceTest, DistancesCompareUtf16UnitsAndReadNilAsEmpty) {
  constexpr auto kUtf8 = encoding::kUTF8, kUtf16 = encoding::kUTF16;
  // Jaro: (matches / m + matches / n + (matches - transpositions / 2) / matches) / 3, raised by
  // a tenth of the rest per common leading unit (at most 4) when above 0.7.
  const struct {
    std::optional<std::string> a, b;  // nullopt: the nil string
    std::uint32_t encodingA, encodingB;
    double levenshtein, jaroWinkler;
  } cases[] = {
      {"kitten", "sitting", kUtf8, kUtf8, 3.0 / 6, 1 - (4.0 / 7 + 4.0 / 6 + 1) / 3},
      {"Z\u00FCrich", utf16Bytes(u"Z\u00FCrich"), kUtf8, kUtf16, 0.0, 0.0},
      {"Z\u00FCrich", "Zurich", kUtf8, kUtf8, 1.0 / 6, 1 - (8.0 / 9 + 0.1 * (1.0 / 9))},
      // Two units each, the high surrogates equal.
      {"\U0001F600", "\U0001F601", kUtf8, kUtf8, 0.5, 1 - 2.0 / 3},
      {std::nullopt, "abc", 0, kUtf8, 1.0, 1.0},
      {"abc", "", kUtf8, kUtf8, 1.0, 1.0},
      {std::nullopt, std::nullopt, 0, 0, 1.0, 0.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.a) + " / " + testing::PrintToString(c.b));
    const HostString a(makeArgument(c.a, c.encodingA)), b(makeArgument(c.b, c.encodingB));
    EXPECT_NEAR(zelhost::call<double>("LevenshteinDistanceZEL(a as string, b as string) as double",
                                      a.get(), b.get()),
                c.levenshtein, 1e-12);
    EXPECT_NEAR(zelhost::call<double>("JaroWinklerDistanceZEL(a as string, b as string) as double",
                                      a.get(), b.get()),
                c.jaroWinkler, 1e-12);
    EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);
  }
}

}  // namespace
