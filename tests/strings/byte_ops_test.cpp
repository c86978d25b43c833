// Byte-string operations through the built plug-in, where the reference's examples cannot reach:
// memory failures, random draws, host failures and storage the host keeps elsewhere.
#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using zelhost::call;
using zeltest::HostString;

constexpr std::uint32_t kNone = encoding::kNone, kAscii = encoding::kASCII, kUtf8 = encoding::kUTF8,
                        kUtf16 = encoding::kUTF16;
constexpr RBInteger kHuge = std::numeric_limits<RBInteger>::max();

class ByteOpsTest : public zeltest::PluginFixture {
 protected:
  void TearDown() override {
    for (const REALstring s : made_) zelhost::release(s);
    PluginFixture::TearDown();
  }

  // An argument that lives until the end of the test.
  REALstring str(std::string_view bytes, std::uint32_t encoding = kNone) {
    return made_.emplace_back(zelhost::makeString(bytes, encoding));
  }

  std::vector<REALstring> made_;
};

TEST_F(ByteOpsTest, CreateStringTooLongRaisesOutOfMemory) {
  EXPECT_EQ(call<REALstring>("CreateStringZEL", kHuge, str("ab")), nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfMemoryException");
  EXPECT_EQ(raised->message, "Failed to allocate memory.");
}

TEST_F(ByteOpsTest, RandomBytesComeFromTheWholeByteRangeOrPrintableAscii) {
  const HostString bytes(call<REALstring>("RandomBytesStringZEL", RBInteger{4096}, RBBoolean{0}));
  const HostString other(call<REALstring>("RandomBytesStringZEL", RBInteger{4096}, RBBoolean{0}));
  const HostString ascii(call<REALstring>("RandomBytesStringZEL", RBInteger{4096}, RBBoolean{1}));
  const std::string random = bytes.bytes(), printable = ascii.bytes();
  ASSERT_EQ(random.size(), 4096U);
  EXPECT_EQ(bytes.encoding(), kNone);
  EXPECT_NE(random, other.bytes());
  EXPECT_GT(std::set<char>(random.begin(), random.end()).size(), 200U);
  ASSERT_EQ(printable.size(), 4096U);
  EXPECT_EQ(ascii.encoding(), kAscii);
  const std::set<unsigned char> values(printable.begin(), printable.end());
  EXPECT_EQ(values.size(), 96U);
  EXPECT_EQ(*values.begin(), ' ');
  EXPECT_EQ(*values.rbegin(), 0x7F);
  for (const RBInteger length : {RBInteger{0}, RBInteger{-1}, kHuge}) {
    EXPECT_EQ(call<REALstring>("RandomBytesStringZEL", length, RBBoolean{1}), nullptr);
  }
  EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);
}

TEST_F(ByteOpsTest, ConversionsGiveNilWhenTheHostCannotConvert) {
  zelhost::setServiceMissing("REALConvertString");
  EXPECT_EQ(call<REALstring>("UnicodeStringZEL", str("x", kUtf8)), nullptr);
  EXPECT_EQ(call<REALstring>("NativeStringZEL", str("x", kUtf16)), nullptr);
}

TEST_F(ByteOpsTest, ClearStringContentWipesOnlyInlineBytes) {
  const HostString secret("s3cr\xC3\xABt", kUtf8);
  EXPECT_EQ(call<RBBoolean>("ClearStringContentZEL", secret.get()), 1);
  EXPECT_EQ(secret.bytes(), std::string(7, '\0'));

  const HostString detached(zelhost::makeDetachedString("secret", kUtf8));
  EXPECT_EQ(call<RBBoolean>("ClearStringContentZEL", detached.get()), 0);
  EXPECT_EQ(detached.bytes(), "secret");
}

class ByteOpsDebugTest : public zeltest::DebugSwitchOn<ByteOpsTest> {};

TEST_F(ByteOpsDebugTest, ClearStringContentLogsWhereTheBytesLie) {
  zelhost::captureLog(true);
  const HostString secret("abc", kUtf8);
  EXPECT_EQ(call<RBBoolean>("ClearStringContentZEL", secret.get()), 1);
  EXPECT_THAT(zelhost::capturedLog(),
              testing::ElementsAre("ZEL Debug: mPrivateStringDelta1 42", "ZEL Debug: mySize 3",
                                   testing::StartsWith("ZEL Debug: myData ")));
}

}  // namespace
