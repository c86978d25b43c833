// yEnc decoding into a MemoryBlock through the built plug-in: a new block, and the failure to
// make one.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using zeltest::HostObject;

class YDecodeMySqlHexDumpTest : public zeltest::PluginFixture {};

TEST_F(YDecodeMySqlHexDumpTest, MemoryBlockFormDecodesIntoANewBlock) {
  const HostObject encoded(zelhost::makeMemoryBlock("\x6B=}\x29"));
  const HostObject decoded(zelhost::call<REALobject>("_yDecodeMemoryZEL", encoded.get()));
  ASSERT_NE(decoded.get(), nullptr);
  EXPECT_EQ(zelhost::className(decoded), "MemoryBlock");
  EXPECT_EQ(zelhost::memoryBlockBytes(decoded), "A\x13\xFF");
  EXPECT_EQ(zelhost::memoryBlockBytes(encoded), "\x6B=}\x29");

  const HostObject empty(zelhost::makeMemoryBlock(""));
  for (const REALobject block : {empty.get(), REALobject{nullptr}}) {
    EXPECT_EQ(zelhost::call<REALobject>("_yDecodeMemoryZEL", block), nullptr);
  }
  EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);

  zelhost::setMemoryBlockConstructorFailing();
  const HostObject body(zelhost::makeMemoryBlock("\x6B\x6C"));
  EXPECT_EQ(zelhost::call<REALobject>("_yDecodeMemoryZEL", body.get()), nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfMemoryException");
  EXPECT_EQ(raised->message, "Failed to allocate a memoryblock with 2 bytes in size.");
}

}  // namespace
