// In-process tests of the bridge: the static plug-in code runs against the stand-in host, with
// the debug log captured, and every test must leave no host string, object or lent buffer alive.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "framework/debug_log.h"
#include "framework/plugin_state.h"
#include "stand_in_host.h"

namespace zel::testing {

class BridgeTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static std::once_flag started;
    std::call_once(started, [] {
      zelhost::configure({});
      REALPluginMain(zelhost::resolve);
    });
  }

  void SetUp() override {
    zelhost::configure({});
    useHostVersion(2025.03);
    setDebugEnabled(true);
    zelhost::captureLog(true);
  }

  void TearDown() override {
    EXPECT_EQ(zelhost::liveCounts(), zelhost::LiveCounts{});
    EXPECT_EQ(zelhost::protocolErrors(), std::vector<std::string>{});
    zelhost::configure({});
  }

  static void useHostVersion(double version) { detail::setHostVersionForTesting(version); }

  static std::vector<std::string> log() { return zelhost::capturedLog(); }
  static int logCount(std::string_view needle) {
    const auto lines = log();
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find(needle) != std::string::npos;
    }));
  }
  static bool logged(std::string_view needle) { return logCount(needle) > 0; }
};

// Native-order (little-endian here) bytes of code units.
template <class Unit>
std::string unitBytes(std::basic_string_view<Unit> units) {
  std::string bytes;
  for (const Unit unit : units) {
    for (std::size_t b = 0; b < sizeof(Unit); ++b) {
      bytes.push_back(static_cast<char>((static_cast<std::uint32_t>(unit) >> (8 * b)) & 0xFF));
    }
  }
  return bytes;
}
inline std::string utf16Bytes(std::u16string_view units) {
  return unitBytes(units);
}
inline std::string utf32Bytes(std::u32string_view codePoints) {
  return unitBytes(codePoints);
}

// A host string owned by the test for its own scope.
class TestString {
 public:
  TestString(std::string_view bytes, std::uint32_t encoding)
      : string_(zelhost::makeString(bytes, encoding)) {}
  ~TestString() { zelhost::release(string_); }
  TestString(const TestString&) = delete;
  TestString& operator=(const TestString&) = delete;
  operator REALstring() const { return string_; }  // NOLINT: stands in for the handle

 private:
  REALstring string_;
};

}  // namespace zel::testing
