// Start-up of the built library under the stand-in host: version, SDK level, the debug switch,
// and the loading line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stand_in_host.h"
#include "support/environment.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

std::vector<std::string> loadWithDebugSwitch(const char* value, bool inRuntime) {
  zeltest::setEnvironmentVariable("ZELDEBUG", value);
  zelhost::configure({.version = 2019.01, .inRuntime = inRuntime});
  zelhost::captureLog(true);
  zelhost::loadPlugin(ZEL_PLUGIN_PATH);
  auto captured = zelhost::capturedLog();
  zelhost::captureLog(false);
  zeltest::setEnvironmentVariable("ZELDEBUG", nullptr);
  return captured;
}

constexpr const char* kLoadingLine = "Loading String in Xojo 2019.01 and plugin SDK version 13...";

TEST(Startup, AnnouncesTheSdkLevelOfTheHostVersion) {
  const struct {
    double version;
    int level;
  } cases[] = {{0.0, 9},       {2011.5, 9},   {2012.0, 10},   {2012.99, 10}, {2013.0, 11},
               {2013.029, 11}, {2013.03, 12}, {2013.039, 12}, {2013.04, 13}, {2025.03, 13}};
  for (const auto& c : cases) {
    zelhost::configure({.version = c.version});
    EXPECT_THAT(zelhost::loadPlugin(ZEL_PLUGIN_PATH).pluginVersions, ElementsAre(c.level))
        << c.version;
  }
}

TEST(Startup, HostWithoutVersionServiceGetsLevelNine) {
  zelhost::configure({});
  zelhost::setServiceMissing("REALGetRBVersion");
  EXPECT_THAT(zelhost::loadPlugin(ZEL_PLUGIN_PATH).pluginVersions, ElementsAre(9));
}

TEST(Startup, LoadingLineOnlyInTheIdeWithTheSwitchOn) {
  for (const char* on : {"1", "TRUE", "Yes"})
    EXPECT_THAT(loadWithDebugSwitch(on, false), Contains(kLoadingLine)) << on;
  for (const char* off : {"0", "2", "on", "", static_cast<const char*>(nullptr)})
    EXPECT_THAT(loadWithDebugSwitch(off, false), Not(Contains(kLoadingLine)))
        << (off ? off : "unset");
  EXPECT_THAT(loadWithDebugSwitch("1", true), Not(Contains(kLoadingLine)));
}

}  // namespace
