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
#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace zeltest {

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
    zel::setDebugEnabled(true);
    zelhost::captureLog(true);
  }

  void TearDown() override {
    EXPECT_EQ(zelhost::liveCounts(), zelhost::LiveCounts{});
    EXPECT_EQ(zelhost::protocolErrors(), std::vector<std::string>{});
    zelhost::configure({});
  }

  static void useHostVersion(double version) { zel::detail::setHostVersionForTesting(version); }

  static std::vector<std::string> log() { return zelhost::capturedLog(); }
  static int logCount(std::string_view needle) {
    const auto lines = log();
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find(needle) != std::string::npos;
    }));
  }
  static bool logged(std::string_view needle) { return logCount(needle) > 0; }
};

}  // namespace zeltest
