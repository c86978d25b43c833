// StyledText.RTFDataZEL end to end: the built plug-in in the stand-in host, under hosts that take
// the class extension as such and hosts that get it rewritten into the module.
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

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

using zelhost::RegisteredMember;
using zelhost::StyledParagraph;
using zelhost::StyledRun;

constexpr const char* kWorkedExample =
    "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl\\red0\\green0\\blue0;"
    "\\red255\\green0\\blue0;}\\uc0 \\b\\f0\\fs24 Hello \\b0\\i\\cf1 World\\par }";

StyledRun styled(std::string text, std::string font, RBInteger size, bool bold, bool italic,
                 RBColor color) {
  StyledRun run;
  run.text = std::move(text);
  run.font = std::move(font);
  run.size = size;
  run.bold = bold;
  run.italic = italic;
  run.color = color;
  return run;
}

const std::vector<StyledRun> kWorkedRuns = {styled("Hello ", "Arial", 12, true, false, 0),
                                            styled("World\n", "Arial", 12, false, true, 0xFF0000)};

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

TEST_P(RtfDataTest, RegistersInTheHostsForm) {
  struct Expected {
    RegisteredMember::Kind kind;
    const char* owner;
    const char* declaration;
    std::uint32_t flags;
    bool setter;
  };
  const double version = GetParam();
  const std::uint32_t targetFlags = version >= 2020.02 ? 0x308 : 4;
  std::vector<Expected> expected;
  if (asClassExtension()) {
    expected = {{RegisteredMember::Kind::ClassExtensionMethod, "StyledText",
                 "RTFDataZEL(SkipParagraphs as boolean = false) as string", targetFlags, true}};
  } else {
    expected = {
        {RegisteredMember::Kind::ModuleMethod, "StringGlobalsZEL",
         "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false) as string",
         targetFlags | 16, false},
        {RegisteredMember::Kind::ModuleMethod, "StringGlobalsZEL",
         "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false, assigns "
         "value as string)",
         targetFlags | 16, false}};
  }
  std::vector<const RegisteredMember*> found;
  for (const RegisteredMember& member : registration().members) {
    if (member.parsed.name == "RTFDataZEL") found.push_back(&member);
  }
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i]->kind, expected[i].kind) << i;
    EXPECT_EQ(found[i]->owner, expected[i].owner) << i;
    EXPECT_EQ(found[i]->declaration, expected[i].declaration) << i;
    EXPECT_EQ(found[i]->flags, expected[i].flags) << i;
    EXPECT_EQ(found[i]->setter != nullptr, expected[i].setter) << i;
  }
  if (!asClassExtension()) {
    EXPECT_EQ(&registration().members.front(), found.front());
  }
}

TEST_P(RtfDataTest, WritesTheWorkedExampleAndItsVariants) {
  const HostObject worked(zelhost::makeStyledText(kWorkedRuns));
  const HostString rtf = read(worked);
  EXPECT_EQ(rtf.bytes(), kWorkedExample);
  EXPECT_EQ(rtf.encoding(), encoding::kUTF8);

  const HostObject centred(
      zelhost::makeStyledText({styled("Mid", "Arial", 12, false, false, 0)}, {2}));
  const auto body = [](const HostString& written) {
    const std::string bytes = written.bytes();
    return bytes.substr(bytes.find("\\uc0 ") + 5);
  };
  EXPECT_EQ(body(read(centred)), "\\qc\\f0\\fs24 Mid}");
  EXPECT_EQ(body(read(centred, true)), "\\f0\\fs24 Mid}");

  const HostObject empty(zelhost::makeStyledText({}));
  EXPECT_EQ(read(empty).get(), nullptr);
  const HostObject noParagraphs(zelhost::makeStyledText({styled("", "Arial", 12, true, false, 0)}));
  EXPECT_EQ(read(noParagraphs).get(), nullptr);
  EXPECT_EQ(read(nullptr).get(), nullptr);
}

TEST_P(RtfDataTest, FontsHandedOverAsUntaggedUtf16AreReadAsUtf16) {
  StyledRun run = styled("x", "", 0, false, false, 0);
  run.font = std::string("A\0r\0i\0a\0l\0", 10);
  run.fontEncoding = encoding::kNone;
  const HostObject text(zelhost::makeStyledText({run}));
  EXPECT_EQ(
      read(text).bytes(),
      "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl\\red0\\green0\\blue0;}"
      "\\uc0 \\f0 x}");
}

TEST_P(RtfDataTest, ReadsTheWorkedExampleAndClearsFirst) {
  const HostObject text(
      zelhost::makeStyledText({styled("old text\n", "Courier", 9, false, false, 1)}));
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
  setenv("ZELDEBUG", "1", 1);
  zelhost::loadPlugin(pluginPath());
  unsetenv("ZELDEBUG");
  zelhost::setStyleRunFontMissing();
  zelhost::captureLog(true);
  const HostObject text(zelhost::newInstance("StyledText"));
  assign(text, "{\\rtf1{\\fonttbl{\\f0\\fnil Gill Sans;}}\\f0 Hi}");
  const auto log = zelhost::capturedLog();
  zelhost::setStyleRunFontMissing(false);
  const auto runs = zelhost::styledRuns(text);
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_EQ(runs[0].font, "Gill Sans");
  const auto logged = [&](std::string_view line) {
    return std::find_if(log.begin(), log.end(), [&](const std::string& l) {
             return l.find(line) != std::string::npos;
           }) != log.end();
  };
  EXPECT_TRUE(logged("ZEL Debug: Failed to set Font property, trying FontName."));
  EXPECT_TRUE(logged(": Gill Sans"));
  EXPECT_FALSE(logged("Failed to set FontName property."));
}

// ---- round trips

struct Sample {
  std::vector<StyledRun> runs;
  std::vector<RBInteger> alignments;  // one per paragraph
};

// Paragraphs of one to three runs; only a paragraph's last run ends in a break, so every run's
// midpoint lies in its own paragraph and no break pairs up across runs.
Sample generate(std::mt19937& random) {
  static const std::vector<std::string> pieces = {"a",
                                                  "Z",
                                                  "word",
                                                  " ",
                                                  "\t",
                                                  "{",
                                                  "}",
                                                  "\\",
                                                  "7",
                                                  ".",
                                                  "\xC3\xA9",
                                                  "\xC3\x9F",
                                                  "\xE2\x82\xAC",
                                                  "\xE4\xB8\xAD",
                                                  "\xF0\x9F\x98\x80",
                                                  "\xF0\x9D\x84\x9E",
                                                  "\xEF\xBF\xBD",
                                                  "~"};
  static const std::vector<std::string> fonts = {"Arial", "Times New Roman", "Liberation Mono",
                                                 "\xC3\x9Cn\xC3\xAF Sans",
                                                 "\xE5\xAE\x8B\xE4\xBD\x93"};
  static const std::vector<RBInteger> sizes = {0, 9, 10, 12, 13, 18, 72};
  static const std::vector<std::string> breaks = {"\r", "\n", "\r\n"};
  const auto pick = [&](const auto& from) {
    return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
  };
  const auto chance = [&](int percent) {
    return std::uniform_int_distribution<int>(0, 99)(random) < percent;
  };
  Sample sample;
  const int paragraphs = std::uniform_int_distribution<int>(1, 5)(random);
  for (int p = 0; p < paragraphs; ++p) {
    sample.alignments.push_back(std::uniform_int_distribution<RBInteger>(0, 3)(random));
    const int runs = std::uniform_int_distribution<int>(1, 3)(random);
    for (int r = 0; r < runs; ++r) {
      StyledRun run;
      const int length = std::uniform_int_distribution<int>(1, 8)(random);
      for (int i = 0; i < length; ++i) run.text += pick(pieces);
      if (r == runs - 1 && (p < paragraphs - 1 || chance(50))) run.text += pick(breaks);
      run.font = pick(fonts);
      run.size = pick(sizes);
      run.bold = chance(40);
      run.italic = chance(40);
      run.underline = chance(30);
      run.color = chance(40) ? 0 : std::uniform_int_distribution<RBColor>(0, 0xFFFFFF)(random);
      sample.runs.push_back(std::move(run));
    }
  }
  return sample;
}

struct Character {
  char16_t unit;
  std::string font;
  RBInteger size;
  bool bold, italic, underline;
  RBColor color;
  bool operator==(const Character&) const = default;
};

std::u16string unitsOf(const StyledRun& run) {
  std::u16string units;
  if (run.textEncoding == encoding::kUTF16) {
    units.resize(run.text.size() / 2);
    std::memcpy(units.data(), run.text.data(), units.size() * 2);
    return units;
  }
  const HostString text(run.text, run.textEncoding);
  const std::string utf8 = zelhost::convertToUtf8(text);
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const int extra = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t c = extra == 0 ? lead : lead & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) c = c << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
    i += static_cast<std::size_t>(extra) + 1;
    if (c >= 0x10000) {
      units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      units += static_cast<char16_t>(c);
    }
  }
  return units;
}

// Every character with its style; line breaks as the reader gives them back (one CR each).
std::vector<Character> characters(const std::vector<StyledRun>& runs, bool asWritten) {
  std::vector<Character> all;
  for (const StyledRun& run : runs) {
    const std::u16string units = unitsOf(run);
    for (std::size_t i = 0; i < units.size(); ++i) {
      char16_t unit = units[i];
      if (asWritten && unit == u'\n') {
        if (i > 0 && units[i - 1] == u'\r') continue;
        unit = u'\r';
      }
      all.push_back(
          {unit, run.font.value_or(""), run.size, run.bold, run.italic, run.underline, run.color});
    }
  }
  return all;
}

TEST_P(RtfDataTest, GeneratedTextsSurviveARoundTrip) {
  std::mt19937 random(20250101);
  for (int n = 0; n < 300; ++n) {
    const Sample sample = generate(random);
    const HostObject original(zelhost::makeStyledText(sample.runs, sample.alignments));
    const HostString rtf = read(original);
    const HostObject copy(zelhost::newInstance("StyledText"));
    assign(copy, rtf.bytes());

    const auto runs = zelhost::styledRuns(copy);
    ASSERT_EQ(characters(runs, false), characters(sample.runs, true)) << rtf.bytes();
    for (const StyledRun& run : runs) {
      const std::u16string units = unitsOf(run);
      const bool escaped =
          std::any_of(units.begin(), units.end(), [](char16_t u) { return u >= 128; });
      EXPECT_TRUE(!escaped || units.size() == 1)
          << "a \\u character shares its run: " << rtf.bytes();
    }
    std::vector<RBInteger> expectedAlignments;
    bool aligned = false;
    for (const RBInteger alignment : sample.alignments) {
      expectedAlignments.push_back(alignment == 0 && aligned ? 1 : alignment);
      aligned = aligned || alignment != 0;
    }
    std::vector<RBInteger> alignments;
    for (const StyledParagraph& paragraph : zelhost::styledParagraphs(copy)) {
      alignments.push_back(paragraph.alignment);
    }
    ASSERT_EQ(alignments, expectedAlignments) << rtf.bytes();
  }
}

// Each thread has its own styled texts; what they share is the plug-in's method caches, which
// flip between the threads' objects all the time.
TEST_P(RtfDataTest, ThreadsReadAndAssignAtOnce) {
  std::vector<std::thread> threads;
  std::atomic<int> mismatches{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 random(static_cast<unsigned>(t));
      for (int n = 0; n < 40; ++n) {
        const Sample sample = generate(random);
        const HostObject original(zelhost::makeStyledText(sample.runs, sample.alignments));
        const HostString rtf = read(original);
        const HostObject copy(zelhost::newInstance("StyledText"));
        assign(copy, rtf.bytes());
        const HostString again = read(copy);
        if (again.bytes().empty() ||
            characters(zelhost::styledRuns(copy), false) != characters(sample.runs, true)) {
          ++mismatches;
        }
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

// ---- zelhost

std::string run(const std::string& arguments) {
  FILE* pipe = popen((ZELHOST_PATH " --plugin " ZEL_PLUGIN_PATH " " + arguments).c_str(), "r");
  std::string output;
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    output.append(buffer, got);
  EXPECT_EQ(pclose(pipe), 0) << arguments;
  return output;
}

TEST(ZelhostRtfTest, WritesAndReadsFilesInBothRegistrationForms) {
  const auto folder =
      std::filesystem::temp_directory_path() /
      ("zel-rtf-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
  std::filesystem::create_directories(folder);
  const auto runsFile = (folder / "runs.json").string();
  const auto rtfFile = (folder / "text.rtf").string();
  std::ofstream(runsFile)
      << R"({"runs": [{"text": "Hello ", "font": "Arial", "size": 12, "bold": true},
                      {"text": "World\n", "font": "Arial", "size": 12, "italic": true, "color": 16711680}],
             "paragraphs": [{"alignment": 0}]})";
  std::ofstream(rtfFile, std::ios::binary) << kWorkedExample;
  const std::string runsJson =
      R"({"runs": [{"text": "Hello ", "font": "Arial", "size": 12, "bold": true, "italic": false, "underline": false, "color": 0},)"
      "\n          "
      R"({"text": "World\r", "font": "Arial", "size": 12, "bold": false, "italic": true, "underline": false, "color": 16711680}],)"
      "\n "
      R"("paragraphs": [{"start": 0, "end": 12, "alignment": 0}]})"
      "\n";
  for (const char* version : {"2012.5", "2025.03"}) {
    const std::string host = std::string("--host-version ") + version + " ";
    EXPECT_EQ(run(host + "rtf-write " + runsFile), kWorkedExample) << version;
    EXPECT_EQ(run(host + "rtf-read --json " + rtfFile), runsJson) << version;
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace zeltest
