// Text search, line endings, readable strings and UTF-8 repair through the built plug-in, where
// the reference's examples cannot reach: host yields, memory failures, every argument form alike
// and the debug log.
#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

// GCC 12 from -O2 on claims the strings in these tables of cases may be used uninitialized: a
// false positive on arrays of aggregates that hold std::string.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

namespace {

using namespace zeltest;
namespace enc = encoding;

constexpr const char* kWholeWord =
    "ContainsWholeWordZEL(Text as String, Word as String) as boolean";
constexpr const char* kCount = "CountOccurancesZEL(s as string, find as string) as integer";
constexpr const char* kLineEndings =
    "ReplaceLineEndingsZEL(Text as String, NewLine as String, yield as boolean = false) as String";
constexpr const char* kStringsPtr =
    "GetStringsFromDataZEL(data as ptr, size as Integer, MinLength as Integer = 0) as string()";
constexpr const char* kStringsBlock =
    "GetStringsFromDataZEL(data as MemoryBlock, MinLength as Integer = 0) as string()";
constexpr const char* kStringsString =
    "GetStringsFromDataZEL(data as String, MinLength as Integer = 0) as string()";
constexpr const char* kRepairPtr =
    "CheckUTF8ZEL(data as ptr, size as Integer, Placeholder as string) as string";
constexpr const char* kRepairBlock =
    "CheckUTF8ZEL(mem as MemoryBlock, Placeholder as string) as string";
constexpr const char* kRepairString =
    "CheckUTF8ZEL(data as string, Placeholder as string) as string";

class TextSearchTest : public PluginFixture {};

// 2^22 copies of a 16-byte line make 64 MiB, which hold at least three addresses that are
// multiples of 16 MiB.
std::string fourMillionTimes(std::string text) {
  for (int doubling = 0; doubling < 22; ++doubling) text += text;
  return text;
}

TEST_F(TextSearchTest, LineEndingsYieldToTheHostOnlyWhenAsked) {
  const std::string lines = fourMillionTimes("a line of text\r\n");
  const std::string expected = fourMillionTimes("a line of text\n");
  const HostString text(lines, enc::kUTF8), newLine("\n", enc::kUTF8);
  for (const bool yield : {false, true}) {
    SCOPED_TRACE(yield);
    const int before = zelhost::serviceCalls("REALYieldToRB");
    const HostString result(
        zelhost::call<REALstring>(kLineEndings, text.get(), newLine.get(), RBBoolean{yield}));
    const int yields = zelhost::serviceCalls("REALYieldToRB") - before;
    if (yield) {
      EXPECT_GE(yields, 3);
      EXPECT_LE(yields, 5);
    } else {
      EXPECT_EQ(yields, 0);
    }
    EXPECT_TRUE(result.bytes() == expected);
  }
}

TEST_F(TextSearchTest, LineEndingsReportAFailedReservationWithItsOwnMessage) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer's allocator aborts on a request of a terabyte";
#else
  // 16 MiB of text and a 4 MiB line ending ask for about 1.4 TB up front.
  const HostString text(std::string(std::size_t{16} << 20, 'a'), enc::kUTF8);
  const HostString newLine(std::string(std::size_t{4} << 20, '\n'), enc::kUTF8);
  EXPECT_EQ(zelhost::call<REALstring>(kLineEndings, text.get(), newLine.get(), RBBoolean{0}),
            nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfMemoryException");
  EXPECT_EQ(raised->message, std::bad_alloc().what());
#endif
}

// Each case runs through the pointer, MemoryBlock and string forms alike.
struct DataCase {
  std::string data;
  std::optional<std::vector<std::string>> strings;  // nullopt: the nil array
  RBInteger minLength = 0;
};

std::vector<REALarray> readableStringsOfEveryForm(std::string data, RBInteger minLength) {
  const HostObject block(zelhost::makeMemoryBlock(data));
  const HostString string(data, enc::kNone);
  return {zelhost::call<REALarray>(kStringsPtr, static_cast<void*>(data.data()),
                                   static_cast<RBInteger>(data.size()), minLength),
          zelhost::call<REALarray>(kStringsBlock, block.get(), minLength),
          zelhost::call<REALarray>(kStringsString, string.get(), minLength)};
}

TEST_F(TextSearchTest, ReadableStringsComeAsTheSameArrayFromEveryForm) {
  const std::string sample("\0ABC\0  \0D", 9);
  const DataCase cases[] = {
      {sample, {{"ABC", "D"}}},
      {sample, {{"ABC"}}, 2},
      {sample, std::vector<std::string>{}, 3},
      {"h\xC3\xA9llo\x7F\xED\xA0\x80wo", {{"h\xC3\xA9llo", "wo"}}},
      {"", std::nullopt},
  };
  for (const DataCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.data) + " min " + std::to_string(c.minLength));
    for (REALarray array : readableStringsOfEveryForm(c.data, c.minLength)) {
      const HostObject result(array);
      if (!c.strings) {
        EXPECT_EQ(array, nullptr);
        continue;
      }
      ASSERT_NE(array, nullptr);
      std::vector<std::optional<std::string>> expected(c.strings->begin(), c.strings->end());
      EXPECT_EQ(zelhost::stringArrayItems(array), expected);
    }
  }
}

TEST_F(TextSearchTest, ReadableStringsOfNoDataAreNil) {
  std::string data = "ABC";
  EXPECT_EQ(zelhost::call<REALarray>(kStringsPtr, static_cast<void*>(data.data()), RBInteger{-1},
                                     RBInteger{0}),
            nullptr);
  EXPECT_EQ(zelhost::call<REALarray>(kStringsPtr, static_cast<void*>(nullptr), RBInteger{3},
                                     RBInteger{0}),
            nullptr);
  EXPECT_EQ(zelhost::call<REALarray>(kStringsBlock, REALobject{nullptr}, RBInteger{0}), nullptr);
  EXPECT_EQ(zelhost::call<REALarray>(kStringsString, REALstring{nullptr}, RBInteger{0}), nullptr);
#if defined(ZELHOST_PATH)  // dynamic calls need libffi, present where zelhost is built
  // Each item is a UTF-8 string.
  EXPECT_THAT(zelhost::callJson("GetStringsFromDataZEL", {"mem:41424300c3a9"}),
              testing::HasSubstr(R"("result": [{"encoding": 134217984, "hex": "414243")"));
#endif
}

std::vector<REALstring> repairedOfEveryForm(std::string data, RBInteger size, REALstring filler) {
  const HostObject block(zelhost::makeMemoryBlock(data));
  const HostString string(data, enc::kNone);
  return {zelhost::call<REALstring>(kRepairPtr, static_cast<void*>(data.data()), size, filler),
          zelhost::call<REALstring>(kRepairBlock, block.get(), filler),
          zelhost::call<REALstring>(kRepairString, string.get(), filler)};
}

TEST_F(TextSearchTest, RepairedUtf8ComesAlikeFromEveryForm) {
  struct Case {
    std::string data;
    Text placeholder;
    std::optional<std::string> expected;  // UTF-8; nullopt: the nil string
  };
  const Case cases[] = {
      {"A\xC3(B", {"?"}, "A?(B"},
      {"\xE2\x82", {"?"}, "??"},
      {"A\xC3(B", utf16(u"\u00BF"), "A\u00BF(B"},
      {"A\xC3(B", {std::string("<x\0y>", 5)}, "A<x(B"},
      {std::string("a\0b\xFF\xF0\x9F\x98\x80", 8), kNil, std::string("a\0b\xF0\x9F\x98\x80", 7)},
      {"\xE2\x82", {""}, std::nullopt},
      {"", {"?"}, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.data));
    const HostString placeholder(makeArgument(c.placeholder));
    for (REALstring result :
         repairedOfEveryForm(c.data, static_cast<RBInteger>(c.data.size()), placeholder)) {
      expectString(result, c.expected, enc::kUTF8);
    }
  }
  const HostString question("?", enc::kUTF8);
  std::string data = "\xFF";
  EXPECT_EQ(zelhost::call<REALstring>(kRepairPtr, static_cast<void*>(data.data()), RBInteger{-1},
                                      question.get()),
            nullptr);
  EXPECT_EQ(zelhost::call<REALstring>(kRepairBlock, REALobject{nullptr}, question.get()), nullptr);
}

class TextSearchDebugTest : public DebugSwitchOn<> {
 protected:
  void SetUp() override {
    DebugSwitchOn::SetUp();
    zelhost::captureLog(true);
  }
};

TEST_F(TextSearchDebugTest, WholeWordLogsEveryOccurrenceAndItsNeighbours) {
  const HostString text("xworld world", enc::kUTF8), word("world", enc::kUTF8);
  EXPECT_NE(zelhost::call<RBBoolean>(kWholeWord, text.get(), word.get()), 0);
  const HostString start("\xC3\xA9world", enc::kUTF8);
  EXPECT_NE(zelhost::call<RBBoolean>(kWholeWord, start.get(), word.get()), 0);
  EXPECT_THAT(zelhost::capturedLog(),
              testing::IsSupersetOf({"ZEL Debug: position found 1", "ZEL Debug: posBefore 120",
                                     "ZEL Debug: posAfter 32", "ZEL Debug: position found 7",
                                     "ZEL Debug: posBefore 32", "ZEL Debug: posAfter 0",
                                     "ZEL Debug: position found 2", "ZEL Debug: posBefore -87"}));
}

TEST_F(TextSearchDebugTest, CountLogsItsResult) {
  const HostString text("banana", enc::kUTF8), find("an", enc::kUTF8);
  EXPECT_EQ(zelhost::call<RBInteger>(kCount, text.get(), find.get()), 2);
  EXPECT_THAT(zelhost::capturedLog(), testing::Contains("ZEL Debug: ReplaceCount 2"));
}

}  // namespace
