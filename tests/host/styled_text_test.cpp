// The stand-in's StyledText, StyleRun and Paragraph, seen through the services the plug-in uses.
#include <string>
#include <vector>

#include "host_test_support.h"

namespace zeltest {
namespace {

using zelhost::StyledParagraph;
using zelhost::StyledRun;

StyledRun run(std::string text, std::uint32_t textEncoding = encoding::kUTF8) {
  StyledRun values;
  values.text = std::move(text);
  values.textEncoding = textEncoding;
  return values;
}

template <class Method>
Method objectMethod(REALobject o, const char* declaration) {
  auto load = service<void* (*)(REALobject, const char*)>("REALLoadObjectMethod");
  auto method = reinterpret_cast<Method>(load(o, declaration));
  if (method == nullptr) ADD_FAILURE() << declaration << " is not loaded";
  return method;
}

TEST_F(HostFixture, ParagraphsFollowLineBreaksAcrossRuns) {
  struct Case {
    std::vector<StyledRun> runs;
    std::vector<StyledParagraph> paragraphs;
  };
  const std::vector<Case> cases = {
      {{}, {}},
      {{run("")}, {}},
      {{run("abc")}, {{0, 3, 0}}},
      {{run("ab\r\ncd")}, {{0, 4, 0}, {4, 6, 0}}},
      {{run("ab\r"), run("\ncd\n")}, {{0, 4, 0}, {4, 7, 0}}},
      {{run("a\n\rb\r")}, {{0, 2, 0}, {2, 3, 0}, {3, 5, 0}}},
      {{run("\xC3\xA9\xF0\x9F\x98\x80\n"), run("x")}, {{0, 3, 0}, {3, 4, 0}}},
      {{run(std::string("\x3D\xD8\x00\xDE\n\x00", 6), encoding::kUTF16)}, {{0, 2, 0}}},
  };
  for (const Case& c : cases) {
    HostObject text(zelhost::makeStyledText(c.runs));
    EXPECT_EQ(zelhost::styledParagraphs(text), c.paragraphs) << c.runs.size() << " runs";
    EXPECT_EQ(zelhost::styledRuns(text), c.runs);
  }
}

TEST_F(HostFixture, AlignmentsBelongToParagraphsAndGoWithThem) {
  HostObject text(zelhost::makeStyledText({run("one\n"), run("two\n"), run("three")}, {2, 3, 1}));
  EXPECT_EQ(zelhost::styledParagraphs(text),
            (std::vector<StyledParagraph>{{0, 4, 2}, {4, 8, 3}, {8, 13, 1}}));
  auto remove =
      objectMethod<void (*)(REALobject, RBInteger)>(text, "RemoveStyleRun(Index as Integer)");
  remove(text, 2);
  remove(text, 1);
  remove(text, 7);
  auto append =
      objectMethod<void (*)(REALobject, REALobject)>(text, "AppendStyleRun(Run as StyleRun)");
  HostObject extra(zelhost::newInstance("StyleRun"));
  HostString body("again", encoding::kUTF8);
  ASSERT_TRUE(service<RBBoolean (*)(REALobject, const char*, REALstring)>("REALSetPropValueString")(
      extra, "Text", body));
  append(text, extra);
  EXPECT_EQ(zelhost::styledParagraphs(text), (std::vector<StyledParagraph>{{0, 4, 2}, {4, 9, 0}}));
}

TEST_F(HostFixture, StyleRunsAreCopiedInAndOut) {
  StyledRun styled = run("Hi");
  styled.font = "Arial";
  styled.size = 14;
  styled.bold = true;
  styled.color = 0x123456;
  HostObject text(zelhost::makeStyledText({styled}));
  auto runAt = objectMethod<REALobject (*)(REALobject, RBInteger)>(
      text, "StyleRun(Index as Integer) As StyleRun");
  HostObject copy(runAt(text, 0));
  EXPECT_EQ(runAt(text, 1), nullptr);
  auto setBool =
      service<RBBoolean (*)(REALobject, const char*, RBBoolean)>("REALSetPropValueBoolean");
  ASSERT_TRUE(setBool(copy, "Bold", 0));
  EXPECT_EQ(zelhost::styledRuns(text), std::vector<StyledRun>{styled});
}

TEST_F(HostFixture, FontCanBeMissingWhileFontNameWorks) {
  HostObject styleRun(zelhost::newInstance("StyleRun"));
  HostString arial("Arial", encoding::kUTF8);
  auto setString =
      service<RBBoolean (*)(REALobject, const char*, REALstring)>("REALSetPropValueString");
  auto getString =
      service<RBInteger (*)(REALobject, const char*, REALstring*)>("REALGetPropValueString");
  zelhost::setStyleRunFontMissing();
  REALstring read = nullptr;
  EXPECT_FALSE(setString(styleRun, "Font", arial));
  EXPECT_FALSE(getString(styleRun, "Font", &read) & 0xFF);
  EXPECT_TRUE(setString(styleRun, "FontName", arial));
  zelhost::setStyleRunFontMissing(false);
  ASSERT_TRUE(getString(styleRun, "Font", &read) & 0xFF);
  HostString font(read);
  EXPECT_EQ(font.bytes(), "Arial");
}

}  // namespace
}  // namespace zeltest
