// The fixture of every end-to-end test: a freshly configured stand-in host with the plug-in
// loaded, and a check after each test that the test left no host string, object or string-data
// record alive and that the plug-in used the host correctly.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <string>

#include "stand_in_host.h"
#include "support/environment.h"

namespace zelhost {
inline void PrintTo(const LiveCounts& counts, std::ostream* out) {
  *out << "{strings " << counts.strings << ", objects " << counts.objects << ", string data "
       << counts.stringData << "}";
}
}  // namespace zelhost

namespace zeltest {

class PluginFixture : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Override to start the plug-in under another host.
  virtual zelhost::HostConfig hostConfig() const { return {}; }
  virtual std::string pluginPath() const { return ZEL_PLUGIN_PATH; }

  // What the plug-in registered on this test's load.
  const zelhost::Registration& registration() const { return zelhost::registration(); }

 private:
  zelhost::LiveCounts baseline_;
};

// Loads the plug-in with ZELDEBUG set, as a user turns its debug log on.
template <class Fixture = PluginFixture>
class DebugSwitchOn : public Fixture {
 protected:
  void SetUp() override {
    setEnvironmentVariable("ZELDEBUG", "1");
    Fixture::SetUp();
  }
  void TearDown() override {
    setEnvironmentVariable("ZELDEBUG", nullptr);
    Fixture::TearDown();
  }
};

// Holds one reference on a host string made by the test and releases it at scope end.
class HostString {
 public:
  explicit HostString(REALstring s = nullptr) : string_(s) {}
  HostString(std::string_view bytes, std::uint32_t encoding)
      : string_(zelhost::makeString(bytes, encoding)) {}
  HostString(const HostString&) = delete;
  HostString& operator=(const HostString&) = delete;
  ~HostString() { zelhost::release(string_); }

  REALstring get() const { return string_; }
  operator REALstring() const { return string_; }
  std::string bytes() const { return zelhost::stringBytes(string_); }
  std::uint32_t encoding() const { return zelhost::stringEncoding(string_); }

 private:
  REALstring string_;
};

// The same for an object (MemoryBlock, exception, array...).
class HostObject {
 public:
  explicit HostObject(REALobject o = nullptr) : object_(o) {}
  explicit HostObject(REALarray a) : object_(reinterpret_cast<REALobject>(a)) {}
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;
  ~HostObject() { zelhost::release(object_); }

  REALobject get() const { return object_; }
  operator REALobject() const { return object_; }
  REALarray array() const { return reinterpret_cast<REALarray>(object_); }

 private:
  REALobject object_;
};

}  // namespace zeltest
