// HostText through the stand-in host: the route to each view, its clean-ups, its failures and
// its bookkeeping.
#include "bridge/host_text.h"

#include <cstdlib>
#include <optional>
#include <thread>

#include "bridge_fixture.h"

namespace zel {

struct HostTextProbe {
  static void overwriteGuards(HostText& text) {
    text.guard1_ = 1;
    text.guard2_ = 2;
  }
};

namespace {

using zeltest::BridgeTest;
using zeltest::HostString;
using zeltest::utf16Bytes;

struct ViewCase {
  const char* name;
  std::string bytes;
  std::uint32_t encoding;
  std::string_view utf8;
  std::u16string_view utf16;
  std::u32string_view utf32;
  std::optional<std::string_view> ascii = {};
};

const ViewCase kViewCases[] = {
    {"ascii text as UTF-8", "hello", encoding::kUTF8, "hello", u"hello", U"hello", "hello"},
    {"UTF-8 text", "caf\xC3\xA9", encoding::kUTF8, "caf\xC3\xA9", u"caf\u00E9", U"caf\u00E9",
     "caf?"},
    {"bad UTF-8 is kept raw, decoded up to the fault",
     "a\xC0\x80"
     "b",
     encoding::kUTF8,
     "a\xC0\x80"
     "b",
     u"a", U"a"},
    {"U+FEFF inside UTF-8", "x\xEF\xBB\xBFy", encoding::kUTF8, "x\xEF\xBB\xBFy", u"xy", U"xy"},
    {"no encoding reads as Windows Latin 1", "\xE9\x80", encoding::kNone, "\xC3\xA9\xE2\x82\xAC",
     u"\u00E9\u20AC", U"\u00E9\u20AC"},
    {"no encoding, pure ASCII", "plain", encoding::kNone, "plain", u"plain", U"plain", "plain"},
    {"ISO Latin 1", "\xE9t\xE9", encoding::kISOLatin1, "\xC3\xA9t\xC3\xA9", u"\u00E9t\u00E9",
     U"\u00E9t\u00E9", "?t?"},
    {"ASCII tag", "abc", encoding::kASCII, "abc", u"abc", U"abc", "abc"},
    {"swapped UTF-16 mark", std::string("\xFE\xFF\x00\x41\x00\xE9", 6), encoding::kUTF16,
     "\xEF\xBF\xBE\xE4\x84\x80\xEE\xA4\x80", u"A\u00E9", U"\u4100\uE900"},
    {"UTF-16 with its mark", std::string("\xFF\xFE\x41\x00", 4), encoding::kUTF16,
     "\xEF\xBB\xBF"
     "A",
     u"A", U"A"},
    {"UTF-16 big-endian", std::string("\x00\x41\x00\xE9", 4), encoding::kUTF16BE, "A\xC3\xA9",
     u"A\u00E9", U"A\u00E9"},
    {"UTF-32 little-endian", zeltest::utf32Bytes(U"\U0001F600z"), encoding::kUTF32LE,
     "\xF0\x9F\x98\x80z", u"\xD83D\xDE00z", U"\U0001F600z"},
    {"empty", "", encoding::kUTF8, "", u"", U"", ""},
};

class HostTextTest : public BridgeTest {};

TEST_F(HostTextTest, EveryViewOfEveryKindOfString) {
  for (const auto& c : kViewCases) {
    SCOPED_TRACE(c.name);
    const HostString source(c.bytes, c.encoding);
    HostText text(source);
    EXPECT_EQ(text.utf8(), c.utf8);
    EXPECT_EQ(text.utf16(), c.utf16);
    EXPECT_EQ(text.utf32(), c.utf32);
    if (c.ascii) {
      EXPECT_EQ(text.ascii(), *c.ascii);
    }
    EXPECT_EQ(text.Utf16Text()[text.Utf16Length()], 0);
    EXPECT_EQ(text.Utf32Text()[text.Utf32Length()], 0U);
    EXPECT_EQ(text.Utf8Text()[text.Utf8Length()], 0);
  }
}

TEST_F(HostTextTest, NilIsEmptyEverywhere) {
  HostText text(nullptr);
  EXPECT_EQ(text.AsciiLength(), 0);
  EXPECT_STREQ(text.Utf8Text(), "");
  EXPECT_EQ(text.Utf8TextOrNull(), nullptr);
  EXPECT_EQ(text.Utf16Length(), 0);
  EXPECT_EQ(text.Utf32Text()[0], 0U);
  EXPECT_EQ(zelhost::serviceCalls("REALLockString"), 0);
}

TEST_F(HostTextTest, LogsTheConversionsItMakes) {
  {
    const HostString bad(
        "a\xC0\x80"
        "b",
        encoding::kUTF8);
    HostText text(bad);
    text.Utf16Text();
  }
  EXPECT_EQ(logCount("ZEL Debug: Try UTF8 to UTF16 conversion..."), 1);
  EXPECT_EQ(logCount("ZEL Debug: Illegal UTF-8 sequence! 1"), 1);
  {
    const HostString swapped(std::string_view("\xFE\xFF\x00\x41", 4), encoding::kUTF16);
    HostText text(swapped);
    EXPECT_EQ(text.utf16(), u"A");
  }
  EXPECT_EQ(logCount("String is Little Endian. Swap."), 1);
}

TEST_F(HostTextTest, AsciiAndUtf8ArgumentsAreNeverCopiedForTheir8BitViews) {
  const struct {
    std::string_view bytes;
    std::uint32_t encoding;
    bool asciiToo;
  } cases[] = {{"hello", encoding::kUTF8, true},
               {"caf\xC3\xA9", encoding::kUTF8, false},
               {"abc", encoding::kISOLatin1, true},
               {"abc", encoding::kASCII, true},
               {"abc", encoding::kNone, true}};
  for (const auto& c : cases) {
    const HostString source(c.bytes, c.encoding);
    HostText text(source);
    EXPECT_EQ(static_cast<const void*>(text.Utf8Text()), zelhost::stringStorage(source));
    if (c.asciiToo) {
      EXPECT_EQ(static_cast<const void*>(text.AsciiText()), zelhost::stringStorage(source));
    }
  }
  EXPECT_EQ(zelhost::serviceCalls("PluginGetStringData"), 0);
}

TEST_F(HostTextTest, EachViewIsComputedOnce) {
  const HostString latin(std::string("\xE9t\xE9"), encoding::kISOLatin1);
  HostText text(latin);
  for (int round = 0; round < 3; ++round) {
    text.AsciiText();
    text.Utf8Length();
    text.utf16();
    text.Utf32Text();
  }
  EXPECT_EQ(zelhost::serviceCalls("PluginGetStringData"), 4);
  EXPECT_EQ(zelhost::liveCounts().stringData, 4);
  text.close();
  EXPECT_EQ(zelhost::liveCounts().stringData, 0);
  EXPECT_EQ(text.Utf8Length(), 0);  // a closed record is empty
}

TEST_F(HostTextTest, FallbackFromUtf16CombinesUnits) {
  const HostString source(utf16Bytes(u"\xDC00\x0041\x0042"), encoding::kUTF16);
  HostText text(source);
  EXPECT_EQ(text.utf16(), u"\xDC00\x0041\x0042");
  zelhost::setServiceFailing("PluginGetStringData");
  EXPECT_EQ(text.utf32(), U"\x42");
  EXPECT_TRUE(text.conversionFailed());
  EXPECT_TRUE(logged("ZEL Debug: Try UTF16 to UTF32 conversion..."));
  EXPECT_FALSE(logged("REALGetStringData failed."));
}

TEST_F(HostTextTest, FailedHostConversionsGiveEmptyViews) {
  const HostString latin("\xE9", encoding::kISOLatin1);
  zelhost::setServiceFailing("PluginGetStringData");
  HostText text(latin);
  EXPECT_EQ(text.ascii(), "");
  EXPECT_EQ(text.utf8(), "");
  EXPECT_EQ(text.utf16(), u"");
  EXPECT_EQ(text.utf32(), U"");
  EXPECT_TRUE(text.conversionFailed());
  EXPECT_EQ(logCount("ZEL Debug: REALGetStringData failed."), 3);  // not for UTF-32: it falls back
}

TEST_F(HostTextTest, FailedRebuildOfTextWithoutEncodingIsReportedOnce) {
  const HostString raw("\xE9", encoding::kNone);
  for (int i = 0; i < 2; ++i) {
    zelhost::failNextAllocations(1);
    HostText text(raw);
    EXPECT_EQ(text.encoding(), encoding::kNone);
    EXPECT_EQ(text.source(), static_cast<REALstring>(raw));
    EXPECT_EQ(text.utf16(), u"\u00E9");  // the host reads it as Windows Latin 1 all the same
  }
  EXPECT_EQ(logCount("ZEL Debug: REALBuildUnicodeString failed"), 1);
}

TEST_F(HostTextTest, TextWithoutEncodingIsRebuiltAsWindowsLatin1) {
  const HostString raw("\xE9", encoding::kNone);
  HostText text(raw);
  EXPECT_NE(text.source(), static_cast<REALstring>(raw));
  EXPECT_EQ(zelhost::stringEncoding(text.source()), encoding::kWindowsLatin1);
  EXPECT_EQ(text.encoding(), encoding::kWindowsLatin1);
  EXPECT_EQ(text.utf32(), U"\u00E9");
  EXPECT_EQ(zelhost::liveCounts().strings, 2);
}

TEST_F(HostTextTest, OverwrittenGuardsStillCloseAndFreeEverything) {
  const HostString source("\xE9t\xE9", encoding::kNone);
  HostText text(source);
  text.utf8();
  text.utf16();
  text.utf32();
  HostTextProbe::overwriteGuards(text);
  text.close();
  EXPECT_EQ(logCount("ZEL Debug: Check1 in rbText invalid 1"), 1);
  EXPECT_EQ(logCount("ZEL Debug: Check2 in rbText invalid"), 1);
  EXPECT_EQ(zelhost::liveCounts(), (zelhost::LiveCounts{1, 0, 0}));
  text.close();
  EXPECT_EQ(logCount("Check1"), 1);
}

TEST_F(HostTextTest, DebugLogStringWritesTheTextAsUtf8) {
  const HostString latin("caf\xE9", encoding::kISOLatin1);
  debugLogString("Argument", latin);
  char expected[64];
  std::snprintf(expected, sizeof expected, "ZEL Debug: Argument %p: caf\xC3\xA9",
                static_cast<const void*>(static_cast<REALstring>(latin)));
  EXPECT_EQ(logCount(expected), 1);
  setDebugEnabled(false);
  debugLogString("Silent", latin);
  EXPECT_FALSE(logged("Silent"));
}

TEST_F(HostTextTest, ConcurrentRecordsOnOneArgumentAgree) {
  const HostString shared("na\xC3\xAFve", encoding::kUTF8);
  setDebugEnabled(false);
  std::vector<std::thread> threads;
  std::atomic<int> agreeing{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        HostText text(shared);
        if (text.utf32() == U"na\u00EFve" && text.utf16() == u"na\u00EFve") ++agreeing;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(agreeing, 800);
}

// The "LenB" method is cached for the life of the process, so its absence is tested in a fresh
// one.
TEST_F(HostTextTest, MissingByteLengthGivesEmptyBytes) {
  // Without binfmt the kernel cannot start a foreign binary, so an emulated run cannot re-run it.
  if (const char* emulator = std::getenv("ZEL_EMULATED_BY")) {
    GTEST_SKIP() << "needs a fresh process, which " << emulator << " cannot start";
  }
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        zelhost::setServiceFailing("REALLoadGlobalMethod");
        bool empty;
        {
          const HostString source("h\xC3\xA9llo", encoding::kUTF8);
          HostStringBytes bytes(source);
          HostText text(source);
          empty = bytes.size() == 0 && text.utf8().empty() && text.utf16().empty() &&
                  text.utf32().empty();
        }
        std::exit(empty && zelhost::liveCounts() == zelhost::LiveCounts{} ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zel
