// The host function table: lookups on first use, cached on success, asked again when missing.
#include <gtest/gtest.h>

#include "framework/host_api.h"
#include "framework/plugin_state.h"
#include "stand_in_host.h"
#include "support/plugin_fixture.h"

namespace {

class HostApi : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    zelhost::configure({});
    REALPluginMain(&zelhost::resolve);
  }
  void TearDown() override { zelhost::setServiceMissing("REALGetPropValueString", false); }
};

TEST_F(HostApi, MissingServiceGivesItsMissingResultAndIsAskedForAgain) {
  zelhost::setServiceMissing("REALGetPropValueString");
  zeltest::HostObject block(zelhost::makeMemoryBlock("ab"));
  const int before = zelhost::resolverLookups("REALGetPropValueString");
  REALstring value = nullptr;
  EXPECT_FALSE(zel::host::REALGetPropValueString(block, "Size", &value));
  EXPECT_FALSE(zel::host::REALGetPropValueString(block, "Size", &value));
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(zelhost::resolverLookups("REALGetPropValueString"), before + 2);
}

TEST_F(HostApi, FoundServiceIsResolvedOnce) {
  zeltest::HostString text("abc", encoding::kUTF8);
  zel::host::REALGetStringEncoding(text);
  const int before = zelhost::resolverLookups("REALGetStringEncoding");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(zel::host::REALGetStringEncoding(text), encoding::kUTF8);
  EXPECT_EQ(zelhost::resolverLookups("REALGetStringEncoding"), before);
}

TEST_F(HostApi, StringBytesWithLengthFromTheHostsLenB) {
  zeltest::HostString text("h\xC3\xA9llo", encoding::kUTF8);
  RBInteger length = -1;
  EXPECT_EQ(std::string_view(zel::host::StringGetCString(text, &length), 6), "h\xC3\xA9llo");
  EXPECT_EQ(length, 6);

  const int calls = zelhost::serviceCalls("StringGetCString");
  length = -1;
  EXPECT_EQ(zel::host::StringGetCString(nullptr, &length), nullptr);
  EXPECT_EQ(length, -1);
  EXPECT_EQ(zelhost::serviceCalls("StringGetCString"), calls);
}

TEST_F(HostApi, StringArrayInsertGoesThroughTheArraysProcedure) {
  zeltest::HostObject array(zel::host::RuntimeArrayCreateSingleDimBoundedArray(kArrayOfString, -1));
  zeltest::HostString first("one", encoding::kUTF8);
  zel::host::PluginStringArrayInsert(array.array(), 0, first);
  zel::host::PluginStringArrayInsert(array.array(), 1, nullptr);
  const auto items = zelhost::stringArrayItems(array.array());
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0], "one");
  EXPECT_EQ(items[1], std::nullopt);
}

}  // namespace
