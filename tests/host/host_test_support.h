// Shared helpers of the stand-in host's own tests: the host's services as the plug-in sees them.
#pragma once

#include <gtest/gtest.h>

#include "sdk/host_services.h"
#include "stand_in_host.h"
#include "support/plugin_fixture.h"

namespace zeltest {

template <class Service>
Service service(const char* name) {
  auto address = reinterpret_cast<Service>(zelhost::resolve(name));
  if (address == nullptr) ADD_FAILURE() << name << " is not resolved";
  return address;
}

// A configured host without a plug-in, checked for leaks like the plug-in fixture.
class HostFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    zelhost::configure({});
    baseline_ = zelhost::liveCounts();
  }
  void TearDown() override {
    zelhost::takeRaisedException();
    zelhost::captureLog(false);
    EXPECT_EQ(zelhost::liveCounts(), baseline_);
  }

 private:
  zelhost::LiveCounts baseline_;
};

class FakePluginFixture : public PluginFixture {
 protected:
  std::string pluginPath() const override { return ZEL_FAKE_PLUGIN_PATH; }
};

}  // namespace zeltest
