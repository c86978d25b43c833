// Tag stripping and SQL boolean rewriting through the built plug-in.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

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

constexpr const char* kRemoveTags = "RemoveHTMLTagsZEL(AsciiTextWithTags as string) as string";
constexpr const char* kRemoveTagsWith =
    "RemoveHTMLTagsWithZEL(AsciiTextWithTags as string, Replacement as string) as string";
constexpr const char* kSqlBooleans = "SQLReplaceBooleanZEL(SQL as string) as string";

class TagStrippingTest : public PluginFixture {};

TEST_F(TagStrippingTest, EveryFunctionReadsUtf8AndAnswersUtf8) {
  struct Case {
    const char* declaration;
    Text text;
    std::optional<std::string> expected;  // nullopt: the nil string
    Text replacement = kNil;
  };
  const Case cases[] = {
      {kRemoveTags, {"<p>Hello <b>World</b></p>"}, "Hello World"},
      {kRemoveTags, utf16(u"<i>\u00E9</i>"), "\u00E9"},
      {kRemoveTags, {"caf\xE9<br>", enc::kISOLatin1}, "caf\u00E9"},
      {kRemoveTags, {std::string("ab\0<b>cd", 8)}, "ab"},
      {kRemoveTags, {"<b>"}, std::nullopt},
      {kRemoveTags, {""}, std::nullopt},
      {kRemoveTags, kNil, std::nullopt},
      {kRemoveTagsWith, {"a<b>c"}, "a c", {" "}},
      {kRemoveTagsWith, {"a<b>c"}, "a\u00B7c", utf16(u"\u00B7")},
      {kRemoveTagsWith, {"a<b>c"}, "axc", {std::string("x\0y", 3)}},
      {kRemoveTagsWith, {"a<b>c"}, "ac", kNil},
      {kRemoveTagsWith, kNil, std::nullopt, {" "}},
      {kSqlBooleans,
       {"SELECT * FROM t WHERE a = true AND b = False;"},
       "SELECT * FROM t WHERE a = 1 AND b = 0;"},
      {kSqlBooleans, utf16(u"a = TRUE AND c = '\u00E9 true' "), "a = 1 AND c = '\u00E9 true' "},
      {kSqlBooleans, {std::string("(TRUE) \0 FALSE ", 15)}, "(1) "},
      {kSqlBooleans, {""}, std::nullopt},
      {kSqlBooleans, kNil, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.declaration << " " << testing::PrintToString(c.text.bytes)
                                    << ", " << testing::PrintToString(c.replacement.bytes));
    const HostString text(makeArgument(c.text)), replacement(makeArgument(c.replacement));
    expectString(c.declaration == kRemoveTagsWith
                     ? zelhost::call<REALstring>(c.declaration, text.get(), replacement.get())
                     : zelhost::call<REALstring>(c.declaration, text.get()),
                 c.expected, enc::kUTF8);
  }
}

}  // namespace
