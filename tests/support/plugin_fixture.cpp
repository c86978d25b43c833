#include "support/plugin_fixture.h"

namespace zeltest {

void PluginFixture::SetUp() {
  zelhost::configure(hostConfig());
  zelhost::loadPlugin(pluginPath());
  baseline_ = zelhost::liveCounts();
}

void PluginFixture::TearDown() {
  // An exception the test did not look at is not a leak of the plug-in.
  zelhost::takeRaisedException();
  zelhost::captureLog(false);
  EXPECT_EQ(zelhost::liveCounts(), baseline_) << "host strings, objects or string data left alive";
  EXPECT_EQ(zelhost::protocolErrors(), std::vector<std::string>{}) << "misuse of the host";
}

}  // namespace zeltest
