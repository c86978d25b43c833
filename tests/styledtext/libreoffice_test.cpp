// Interoperability with an independent RTF implementation: LibreOffice (Debian package
// libreoffice-writer-nogui) reads the RTF we write, and we read the RTF it writes. Two soffice runs
// in all, each with a private profile so that runs never meet.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/files.h"
#include "support/plugin_fixture.h"
#include "text/utf8.h"

namespace zeltest {
namespace {

namespace fs = std::filesystem;

class LibreOfficeTest : public PluginFixture {
 protected:
  void SetUp() override {
    PluginFixture::SetUp();
    ASSERT_EQ(std::system("command -v soffice >/dev/null 2>&1"), 0)
        << "LibreOffice is not installed (Debian: apt-get install -y --no-install-recommends "
           "libreoffice-writer-nogui)";
    folder_ = fs::temp_directory_path() / ("zel-libreoffice-" + std::to_string(getpid()));
    fs::create_directories(folder_ / "home");
  }
  void TearDown() override {
    fs::remove_all(folder_);
    PluginFixture::TearDown();
  }

  // Runs soffice headless on `arguments` with the output folder as working directory.
  void soffice(const std::string& arguments) {
    const std::string command =
        "cd '" + folder_.string() + "' && HOME='" + (folder_ / "home").string() +
        "' soffice -env:UserInstallation=file://" + (folder_ / "profile").string() +
        " --headless " + arguments + " >soffice.log 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << fileBytes(folder_ / "soffice.log");
  }

  const fs::path& folder() const { return folder_; }

 private:
  fs::path folder_;
};

struct HtmlParagraph {
  std::string markup;
  std::string text;  // tags stripped, entities decoded, white space as single blanks
};

std::string htmlText(std::string_view markup) {
  std::string text;
  for (std::size_t at = 0; at < markup.size(); ++at) {
    const char c = markup[at];
    if (c == '<') {
      at = markup.find('>', at);
    } else if (c == '&') {
      const std::size_t end = markup.find(';', at);
      const std::string_view entity = markup.substr(at + 1, end - at - 1);
      if (entity.starts_with("#")) {
        const bool hex = entity.starts_with("#x");
        const std::string digits(entity.substr(hex ? 2 : 1));
        zel::text::appendUtf8(static_cast<char32_t>(std::stoul(digits, nullptr, hex ? 16 : 10)),
                              text);
      } else {
        text += entity == "amp" ? "&" : entity == "lt" ? "<" : entity == "gt" ? ">" : "\"";
      }
      at = end;
    } else if (c == '\n' || c == '\r' || c == ' ') {
      if (!text.empty() && text.back() != ' ') text += ' ';
    } else {
      text += c;
    }
  }
  return text;
}

std::vector<HtmlParagraph> htmlParagraphs(const std::string& html) {
  std::vector<HtmlParagraph> paragraphs;
  for (std::size_t at = html.find("<p"); at != std::string::npos; at = html.find("<p", at)) {
    const std::size_t end = html.find("</p>", at);
    const std::string markup = html.substr(at, end - at);
    paragraphs.push_back({markup, htmlText(markup)});
    at = end;
  }
  return paragraphs;
}

TEST_F(LibreOfficeTest, ReadsOurRtfWithItsStyles) {
  struct Expected {
    zelhost::StyledRun run;
    RBInteger alignment;
    std::string text;
    std::vector<std::string> present;
    std::vector<std::string> absent;
  };
  const std::vector<Expected> styles = {
      {{.text = "Bold centred\n", .font = "Liberation Serif", .size = 12, .bold = true},
       2,
       "Bold centred",
       {"align=\"center\"", "<b>", "Liberation Serif", "font-size: 12pt"},
       {"<i>", "<u>", "color="}},
      {{.text = "Italic red\r\n",
        .font = "Liberation Sans",
        .size = 18,
        .italic = true,
        .color = 0xFF0000},
       3,
       "Italic red",
       {"align=\"right\"", "<i>", "color=\"#ff0000\"", "Liberation Sans", "font-size: 18pt"},
       {"<b>", "<u>"}},
      {{.text = "Underlined blue",
        .font = "Liberation Mono",
        .size = 10,
        .underline = true,
        .color = 0x0000FF},
       1,
       "Underlined blue",
       {"align=\"left\"", "<u>", "color=\"#0000ff\"", "Liberation Mono", "font-size: 10pt"},
       {"<b>", "<i>"}},
  };
  const std::vector<Expected> unicode = {
      {{.text = "Plain caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 a{b}\\c",
        .font = "DejaVu Sans",
        .size = 14,
        .color = 0x008000},
       2,
       "Plain caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 a{b}\\c",
       {"align=\"center\"", "color=\"#008000\"", "DejaVu Sans", "font-size: 14pt"},
       {"<b>", "<i>", "<u>"}},
  };
  const std::vector<std::pair<std::string, const std::vector<Expected>*>> documents = {
      {"styles", &styles}, {"unicode", &unicode}};
  for (const auto& [name, document] : documents) {
    std::vector<zelhost::StyledRun> runs;
    std::vector<RBInteger> alignments;
    for (const Expected& paragraph : *document) {
      runs.push_back(paragraph.run);
      alignments.push_back(paragraph.alignment);
    }
    const HostObject text(zelhost::makeStyledText(runs, alignments));
    const HostString rtf(zelhost::call<REALstring>("RTFDataZEL", text.get(), RBBoolean{0}));
    std::ofstream(folder() / (name + ".rtf"), std::ios::binary) << rtf.bytes();
  }
  ASSERT_NO_FATAL_FAILURE(soffice("--convert-to html --outdir . styles.rtf unicode.rtf"));
  for (const auto& [name, document] : documents) {
    const auto paragraphs = htmlParagraphs(fileBytes(folder() / (name + ".html")));
    ASSERT_EQ(paragraphs.size(), document->size()) << name;
    for (std::size_t i = 0; i < paragraphs.size(); ++i) {
      const Expected& expected = (*document)[i];
      EXPECT_EQ(paragraphs[i].text, expected.text);
      for (const std::string& marker : expected.present) {
        EXPECT_NE(paragraphs[i].markup.find(marker), std::string::npos)
            << marker << " missing in " << paragraphs[i].markup;
      }
      for (const std::string& marker : expected.absent) {
        EXPECT_EQ(paragraphs[i].markup.find(marker), std::string::npos)
            << marker << " unexpected in " << paragraphs[i].markup;
      }
    }
  }
}

// LibreOffice puts every text span in a group that opens with its own formatting words
// ("{\loch ...}", "{\hich\af7\loch ...}"); our reader skips a group that opens with a word it does
// not know, so of LibreOffice's RTF only the paragraph marks and their alignments come through.
TEST_F(LibreOfficeTest, ItsRtfGivesUsParagraphsAndAlignments) {
  fs::copy_file(fs::path(ZEL_SOURCE_DIR) / "tests/styledtext/data/styled_sample.html",
                folder() / "styled_sample.html");
  ASSERT_NO_FATAL_FAILURE(
      soffice("--infilter=\"HTML (StarWriter)\" --convert-to rtf --outdir . styled_sample.html"));
  const std::string rtf = fileBytes(folder() / "styled_sample.rtf");
  for (const char* written : {"bold}", "italic}", "underlined}", "Centred bold italic}",
                              "Right blue mono}", "\\cf", "\\qc", "\\qr"}) {
    EXPECT_NE(rtf.find(written), std::string::npos) << written << " not in LibreOffice's RTF";
  }

  const HostObject text(zelhost::newInstance("StyledText"));
  const HostString value(rtf, encoding::kNone);
  if (zelhost::findMethod("RTFDataZEL")->kind == zelhost::RegisteredMember::Kind::ModuleMethod) {
    zelhost::call<void>("RTFDataZEL", text.get(), RBBoolean{0}, value.get());
  } else {
    zelhost::assign("RTFDataZEL", text.get(), RBBoolean{0}, value.get());
  }
  std::vector<RBInteger> alignments;
  for (const auto& paragraph : zelhost::styledParagraphs(text))
    alignments.push_back(paragraph.alignment);
  EXPECT_EQ(alignments, (std::vector<RBInteger>{1, 2, 3, 1}));
  for (const auto& styled : zelhost::styledRuns(text)) EXPECT_EQ(styled.text, "\r");
}

}  // namespace
}  // namespace zeltest
