// StyledText.RTFDataZEL end to end: the built plug-in in the stand-in host, under hosts that take
// the class extension as such and hosts that get it rewritten into the module.
#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "support/files.h"
#include "support/plugin_fixture.h"

namespace zelhost {
inline void PrintTo(const StyledRun& run, std::ostream* out) {
  *out << "{\"" << run.text << "\" enc " << run.textEncoding << ", font "
       << run.font.value_or("(nil)") << ", " << run.size << " pt, b" << run.bold << " i"
       << run.italic << " u" << run.underline << ", colour " << run.color << "}";
}
}  // namespace zelhost

namespace zeltest {
namespace {

using zelhost::StyledParagraph;
using zelhost::StyledRun;

constexpr const char* kWorkedExample =
    "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl\\red0\\green0\\blue0;"
    "\\red255\\green0\\blue0;}\\uc0 \\b\\f0\\fs24 Hello \\b0\\i\\cf1 World\\par }";

const std::vector<StyledRun> kWorkedRuns = {
    {.text = "Hello ", .font = "Arial", .size = 12, .bold = true},
    {.text = "World\n", .font = "Arial", .size = 12, .italic = true, .color = 0xFF0000}};

class RtfDataTest : public PluginFixture, public ::testing::WithParamInterface<double> {
 protected:
  zelhost::HostConfig hostConfig() const override { return {GetParam(), true}; }

  bool asClassExtension() const { return GetParam() < 2013.0 || GetParam() >= 3000.0; }

  HostString read(REALobject styledText, bool skipParagraphs = false) {
    return HostString(zelhost::call<REALstring>("RTFDataZEL", styledText,
                                                static_cast<RBBoolean>(skipParagraphs)));
  }

  void assign(REALobject styledText, std::string_view rtf) {
    const HostString value(rtf, encoding::kUTF8);
    if (asClassExtension()) {
      zelhost::assign("RTFDataZEL", styledText, RBBoolean{0}, value.get());
    } else {
      zelhost::call<void>("RTFDataZEL", styledText, RBBoolean{0}, value.get());
    }
  }
};

TEST_P(RtfDataTest, WritesTheWorkedExampleAndItsVariants) {
  const HostObject worked(zelhost::makeStyledText(kWorkedRuns));
  const HostString rtf = read(worked);
  EXPECT_EQ(rtf.bytes(), kWorkedExample);
  EXPECT_EQ(rtf.encoding(), encoding::kUTF8);

  const HostObject centred(
      zelhost::makeStyledText({{.text = "Mid", .font = "Arial", .size = 12}}, {2}));
  const auto body = [](const HostString& written) {
    const std::string bytes = written.bytes();
    return bytes.substr(bytes.find("\\uc0 ") + 5);
  };
  EXPECT_EQ(body(read(centred)), "\\qc\\f0\\fs24 Mid}");
  EXPECT_EQ(body(read(centred, true)), "\\f0\\fs24 Mid}");

  const HostObject empty(zelhost::makeStyledText({}));
  EXPECT_EQ(read(empty).get(), nullptr);
  const HostObject noParagraphs(
      zelhost::makeStyledText({{.text = "", .font = "Arial", .size = 12, .bold = true}}));
  EXPECT_EQ(read(noParagraphs).get(), nullptr);
  EXPECT_EQ(read(nullptr).get(), nullptr);
}

TEST_P(RtfDataTest, FontsHandedOverAsUntaggedUtf16AreReadAsUtf16) {
  const StyledRun run{
      .text = "x", .font = std::string("A\0r\0i\0a\0l\0", 10), .fontEncoding = encoding::kNone};
  const HostObject text(zelhost::makeStyledText({run}));
  EXPECT_EQ(
      read(text).bytes(),
      "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl\\red0\\green0\\blue0;}"
      "\\uc0 \\f0 x}");
}

TEST_P(RtfDataTest, ReadsTheWorkedExampleAndClearsFirst) {
  const HostObject text(
      zelhost::makeStyledText({{.text = "old text\n", .font = "Courier", .size = 9, .color = 1}}));
  assign(text, kWorkedExample);
  std::vector<StyledRun> expected = kWorkedRuns;
  expected[1].text = "World\r";
  for (StyledRun& run : expected) run.textEncoding = encoding::kWindowsLatin1;
  EXPECT_EQ(zelhost::styledRuns(text), expected);
  EXPECT_EQ(zelhost::styledParagraphs(text), (std::vector<StyledParagraph>{{0, 12, 0}}));
  for (const std::string_view notRtf : {"{\\rtf", "{\\rtx1 Hello}", ""}) {
    assign(text, notRtf);
    EXPECT_EQ(zelhost::styledRuns(text), std::vector<StyledRun>{}) << notRtf;
  }
}

TEST_P(RtfDataTest, FallsBackToFontNameWhenTheHostHasNoFont) {
  setEnvironmentVariable("ZELDEBUG", "1");
  zelhost::loadPlugin(pluginPath());
  setEnvironmentVariable("ZELDEBUG", nullptr);
  zelhost::setStyleRunFontMissing();
  zelhost::captureLog(true);
  const HostObject text(zelhost::newInstance("StyledText"));
  assign(text, "{\\rtf1{\\fonttbl{\\f0\\fnil Gill Sans;}}\\f0 Hi}");
  const auto log = zelhost::capturedLog();
  zelhost::setStyleRunFontMissing(false);
  const auto runs = zelhost::styledRuns(text);
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_EQ(runs[0].font, "Gill Sans");
  using ::testing::Contains, ::testing::HasSubstr, ::testing::Not;
  EXPECT_THAT(log, Contains(HasSubstr("ZEL Debug: Failed to set Font property, trying FontName.")));
  EXPECT_THAT(log, Contains(HasSubstr(": Gill Sans")));
  EXPECT_THAT(log, Not(Contains(HasSubstr("Failed to set FontName property."))));
}

// ---- round trips

// Non-ASCII and non-BMP text handed over as UTF-8, UTF-16 and Latin-1; what the reader gives back
// must write out to the very same RTF, so nothing was lost on either side of the adapter.
std::vector<StyledRun> nonAsciiRuns() {
  return {{.text = "h\xC3\xA9 \xF0\x9F\x98\x80\r\n", .font = "Arial", .size = 12, .bold = true},
          {.text = std::string("\x2D\x4E!\x00\r\x00", 6),
           .textEncoding = encoding::kUTF16,
           .font = "Times New Roman",
           .size = 18,
           .italic = true,
           .color = 0x123456},
          {.text = "caf\xE9",
           .textEncoding = encoding::kISOLatin1,
           .font = "Arial",
           .size = 9,
           .underline = true}};
}

TEST_P(RtfDataTest, NonAsciiTextSurvivesARoundTrip) {
  const HostObject original(zelhost::makeStyledText(nonAsciiRuns(), {0, 2, 3}));
  const std::string rtf = read(original).bytes();
  for (const char* escaped : {"h\\u233  \\u55357 \\u56832 ", "\\u20013 !", "caf\\u233 "}) {
    EXPECT_NE(rtf.find(escaped), std::string::npos) << escaped << " in " << rtf;
  }
  const HostObject copy(zelhost::newInstance("StyledText"));
  assign(copy, rtf);
  EXPECT_EQ(read(copy).bytes(), rtf);
  std::vector<RBInteger> alignments;
  for (const StyledParagraph& paragraph : zelhost::styledParagraphs(copy)) {
    alignments.push_back(paragraph.alignment);
  }
  EXPECT_EQ(alignments, (std::vector<RBInteger>{0, 2, 3}));
}

// Each thread has its own styled texts; what they share is the plug-in's method caches, which
// flip between the threads' objects all the time.
TEST_P(RtfDataTest, ThreadsReadAndAssignAtOnce) {
  const HostObject original(zelhost::makeStyledText(nonAsciiRuns(), {0, 2, 3}));
  const std::string expected = read(original).bytes();
  std::vector<std::thread> threads;
  std::atomic<int> mismatches{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int n = 0; n < 40; ++n) {
        const HostObject text(zelhost::makeStyledText(nonAsciiRuns(), {0, 2, 3}));
        const std::string rtf = read(text).bytes();
        const HostObject copy(zelhost::newInstance("StyledText"));
        assign(copy, rtf);
        if (rtf != expected || read(copy).bytes() != expected) ++mismatches;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mismatches, 0);
}

INSTANTIATE_TEST_SUITE_P(Hosts, RtfDataTest, ::testing::Values(2012.5, 3000.0, 2019.0, 2025.03),
                         [](const ::testing::TestParamInfo<double>& host) {
                           return "Host" + std::to_string(static_cast<int>(host.param * 100));
                         });

// ---- zelhost (built only where libffi is)
#if defined(ZELHOST_PATH)

std::string output(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string bytes;
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    bytes.append(buffer, got);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return bytes;
}

// zelhost's RTF commands give the reference's example files under both registration forms.
TEST(ZelhostRtfTest, WritesAndReadsTheReferenceExamplesInBothRegistrationForms) {
  const std::string examples = ZEL_SOURCE_DIR "/docs/examples/";
  for (const char* version : {"2012.5", "2025.03"}) {
    const std::string zelhost =
        ZELHOST_PATH " --plugin " ZEL_PLUGIN_PATH " --host-version " + std::string(version);
    EXPECT_EQ(output(zelhost + " rtf-write " + examples + "runs.json"),
              fileBytes(examples + "hello.rtf"))
        << version;
    EXPECT_EQ(output(zelhost + " rtf-read --json " + examples + "hello.rtf"),
              fileBytes(examples + "hello_read.json"))
        << version;
  }
}
#endif

}  // namespace
}  // namespace zeltest
