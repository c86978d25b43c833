// Byte-string operations through the built plug-in.
#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace {

using namespace std::string_literals;
using zelhost::call;
using zeltest::HostString;

constexpr std::uint32_t kNone = encoding::kNone, kAscii = encoding::kASCII, kUtf8 = encoding::kUTF8,
                        kUtf16 = encoding::kUTF16;
constexpr RBInteger kHuge = std::numeric_limits<RBInteger>::max();

struct StringCase {
  std::function<REALstring()> call;
  std::optional<std::string> bytes;  // nullopt: the nil string
  std::uint32_t encoding = kNone;
};

template <class T>
struct ValueCase {
  std::function<T()> call;
  T expected;
};

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

  static void check(const std::vector<StringCase>& cases) {
    for (std::size_t i = 0; i < cases.size(); ++i) {
      SCOPED_TRACE("case " + std::to_string(i));
      zeltest::expectString(cases[i].call(), cases[i].bytes, cases[i].encoding);
    }
  }

  template <class T>
  static void check(const std::vector<ValueCase<T>>& cases) {
    for (std::size_t i = 0; i < cases.size(); ++i) {
      EXPECT_EQ(cases[i].call(), cases[i].expected) << "case " << i;
      EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt) << "case " << i;
    }
  }

  std::vector<REALstring> made_;
};

const REALstring nil = nullptr;
RBInteger I(RBInteger value) {
  return value;
}

// A call to make later, its arguments made now.
template <class T, class... Args>
std::function<T()> fn(const char* function, Args... args) {
  return [=] { return call<T>(function, args...); };
}

TEST_F(ByteOpsTest, MasksRepeatOverTheDataAndCarryNoEncoding) {
  check({
      {fn<REALstring>("StringANDZEL", str("abcdef"), str("ABC", kUtf8)), "ABC@@B", kAscii},
      {fn<REALstring>("StringORZEL", str("\x80\x01\x02"), str("\x41")), "\xC1\x41\x43", kNone},
      {fn<REALstring>("StringANDZEL", nil, str("a")), std::nullopt},
      {fn<REALstring>("StringORZEL", str("a"), nil), std::nullopt},
      {fn<REALstring>("StringANDZEL", str("a"), str("", kUtf8)), std::nullopt},
      {fn<REALstring>("StringXORZEL", str("\0\0\0\0\x80"s), str("abc"), I(2)), "cabc\xE1", kNone},
      {fn<REALstring>("StringXORZEL", nil, str("abc"), I(0)), std::nullopt},
      {fn<REALstring>("StringXOR2ZEL", str("\x01\x01\x01"), str("\x10\x20"), I(1)), "\x21\x10\x23",
       kAscii},
  });
}

TEST_F(ByteOpsTest, ConcatenationJoinsRawBytesWhateverTheirEncodings) {
  const std::string utf16 = "\xE9\x00"s;
  check({
      {fn<REALstring>("ConcatBinaryStringsZEL", str("\xC3\xA9", kUtf8), str(utf16, kUtf16)),
       "\xC3\xA9\xE9\x00"s, kNone},
      {fn<REALstring>("ConcatBinaryStringsZEL", str("a"), nil, str("\xFF")), "a\xFF", kNone},
      {fn<REALstring>("ConcatBinaryStringsZEL", str("a"), str("b"), nil, str("d", kUtf8)), "abd",
       kAscii},
      {fn<REALstring>("ConcatBinaryStringsZEL", nil, nil, nil, nil, str("\x80")), "\x80", kNone},
      {fn<REALstring>("ConcatBinaryStringsZEL", str("1"), str("2"), str("3"), str("4"), str("5"),
                      str("\xF6")),
       "12345\xF6", kNone},
      {fn<REALstring>("ConcatBinaryStringsZEL", nil, str("", kUtf8)), std::nullopt},
  });
}

TEST_F(ByteOpsTest, ByteSearchesAndComparisonAnswerPositions) {
  const char* kRange = "InStrByteRangeZEL";
  check(std::vector<ValueCase<RBInteger>>{
      {fn<RBInteger>("InStrBytesZEL", str("hello"), str("ol")), 3},
      {fn<RBInteger>("InStrBytesZEL", str("hello"), nil), 0},
      {fn<RBInteger>("InStrBytesZEL", nil, str("h")), 0},
      {fn<RBInteger>(kRange, str("a\xC8"), I(128), I(255)), 2},
      {fn<RBInteger>(kRange, str("abc"), I(0), I(1), I(99), I(99)), 3},
      {fn<RBInteger>(kRange, str("abc"), I(9), I(1), I(200), I(255), I(98), I(98)), 2},
      {fn<RBInteger>(kRange, str("\xC8"), str(""), I(128), I(255)), 0},
      {fn<RBInteger>(kRange, str("\xC8"), nil, I(-128), I(-1)), 1},
      {fn<RBInteger>(kRange, str("ab\xC8"), str("\xC8"), I(0), I(-1), I(5), I(6)), 3},
      {fn<RBInteger>(kRange, str("xyz"), str("q"), I(0), I(0), I(0), I(0), I(121), I(122)), 2},
      {fn<RBInteger>(kRange, nil, str("a"), I(0), I(255)), 0},
      {fn<RBInteger>("StrCompBytesZEL", nil, nil), -1},
      {fn<RBInteger>("StrCompBytesZEL", nil, str("a")), -1},
      {fn<RBInteger>("StrCompBytesZEL", str("a"), nil), 1},
      {fn<RBInteger>("StrCompBytesZEL", str("abc\0"s), str("abc", kUtf8)), 0},
      {fn<RBInteger>("DetectUnicodeMarkersZEL", str("\xFF\xFE\x41\x00"s)), 4},
      {fn<RBInteger>("DetectUnicodeMarkersZEL", nil), 0},
  });
}

TEST_F(ByteOpsTest, AsciiTestsTreatNilAsAsciiAndEmptyAsNot) {
  check(std::vector<ValueCase<RBBoolean>>{
      {fn<RBBoolean>("IsASCIIStringZEL", nil), 1},
      {fn<RBBoolean>("IsASCIIStringZEL", str("", kUtf8)), 0},
      {fn<RBBoolean>("IsASCIIStringZEL", str("caf\xC3\xA9", kUtf8)), 0},
      {fn<RBBoolean>("IsASCIIStringZEL", nil, I(3)), 1},
      {fn<RBBoolean>("IsASCIIStringZEL", str(""), I(0)), 0},
      {fn<RBBoolean>("IsASCIIStringZEL", str("a\xC8"), I(2)), 1},
  });
  check({
      {fn<REALstring>("ReplaceNonPrintableCharactersZEL", str("a\tb\xC3\xA9\x7F", kUtf8), I(46)),
       "a.b..\x7F", kAscii},
      {fn<REALstring>("ReplaceNonPrintableCharactersZEL", nil, I(46)), std::nullopt},
  });
}

TEST_F(ByteOpsTest, CreateStringRepeatsContentInItsEncoding) {
  check({
      {fn<REALstring>("CreateStringZEL", I(5), str("ab", kUtf8)), "ababa", kUtf8},
      {fn<REALstring>("CreateStringZEL", I(3), str("\xE9", encoding::kISOLatin1)), "\xE9\xE9\xE9",
       encoding::kISOLatin1},
      {fn<REALstring>("CreateStringZEL", I(3), str("ab", encoding::kISOLatin1)), "aba", kAscii},
      // UTF-16 results are handed back as UTF-8, like every built UTF-16 string.
      {fn<REALstring>("CreateStringZEL", I(4), str("a\0"s, kUtf16)), "aa", kUtf8},
      {fn<REALstring>("CreateStringZEL", I(3), nil), "\0\0\0"s, kAscii},
      {fn<REALstring>("CreateStringZEL", I(0), str("ab")), std::nullopt},
  });
  EXPECT_EQ(call<REALstring>("CreateStringZEL", kHuge, str("ab")), nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfMemoryException");
  EXPECT_EQ(raised->message, "Failed to allocate memory.");
}

TEST_F(ByteOpsTest, RandomBytesComeFromTheWholeByteRangeOrPrintableAscii) {
  const HostString bytes(call<REALstring>("RandomBytesStringZEL", I(4096), RBBoolean{0}));
  const HostString other(call<REALstring>("RandomBytesStringZEL", I(4096), RBBoolean{0}));
  const HostString ascii(call<REALstring>("RandomBytesStringZEL", I(4096), RBBoolean{1}));
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

TEST_F(ByteOpsTest, UnicodeMarkersAndHostConversions) {
  // The UTF-16 and UTF-32 marks are built in their encodings and handed back as UTF-8 text.
  const std::string bom = "\xEF\xBB\xBF";
  const auto marker = [](RBInteger kind) { return fn<REALstring>("GetUnicodeMarkersZEL", kind); };
  check({
      {marker(1), bom, kUtf8},
      {marker(3), "\xEF\xBF\xBE", kUtf8},
      {marker(6), "\xEF\xBF\xBD", kUtf8},
      {marker(0), std::nullopt},
      {marker(8), std::nullopt},
      {fn<REALstring>("UnicodeStringZEL", str("\xC3\xA9", kUtf8)), "\xE9\x00"s, kUtf16},
      {fn<REALstring>("NativeStringZEL", str("\xE9\x00"s, kUtf16)), "\xC3\xA9", kUtf8},
      {fn<REALstring>("NativeStringZEL", str("caf\xE9", encoding::kISOLatin1)), "caf\xC3\xA9",
       kUtf8},
      {fn<REALstring>("UnicodeStringZEL", nil), std::nullopt},
  });
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

  EXPECT_EQ(call<RBBoolean>("ClearStringContentZEL", str("", kUtf8)), 1);
  EXPECT_EQ(call<RBBoolean>("ClearStringContentZEL", nil), 0);
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
