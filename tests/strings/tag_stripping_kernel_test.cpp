#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "strings/tag_stripping.h"

namespace zel::strings {
namespace {

using namespace std::string_view_literals;

TEST(TagStrippingKernel, ReplacementPerEmittedByteInsideTags) {
  struct Case {
    std::string_view text, replacement, expected;
  };
  for (const Case& c : std::vector<Case>{{"<p>Hello <b>World</b></p>", "", "Hello World"},
                                         {"3 < 4", "", "3 < 4"},
                                         {"a > b", "", "a  b"},
                                         {"<a title=\"x>y\">link</a>", "", "link"},
                                         {"<a \"<b>\">z", "", "z"},
                                         {"say \"hi\"", "", "say \"hi\""},
                                         {"a<b>c", " ", "a c"},
                                         {"a<br/>c", " ", "a   c"},
                                         {"a<br/>c", "X\0Y"sv, "aXXXc"},
                                         {"<a<b>>x", "", "x"},
                                         {"<a<b>>x", "-", "--x"},
                                         {"<1>", "", "<1"},
                                         {"a<b c", "_", "a___"},  // unclosed to the end
                                         {"a<", "", "a<"},
                                         {"a\0b"sv, "", "a"},  // the result ends at a NUL
                                         {"<b\0>c"sv, "", "c"}}) {
    EXPECT_EQ(removeHtmlTags(c.text, c.replacement), c.expected) << c.text;
  }
}

TEST(TagStrippingKernel, SqlBooleansNeedSixBytesAndSeparators) {
  struct Case {
    std::string_view sql, expected;
  };
  for (const Case& c : std::vector<Case>{{"SELECT * FROM t WHERE a = true AND b = False;",
                                          "SELECT * FROM t WHERE a = 1 AND b = 0;"},
                                         {"x=1 OR TRUE", "x=1 OR TRUE"},
                                         {"(TRUE) ", "(1) "},
                                         {"a=TRUE AND b", "a=TRUE AND b"},
                                         {"a = TRUE AND b", "a = 1 AND b"},
                                         {"a = TRUE ", "a = TRUE "},
                                         {"TRUE x", "1 x"},
                                         {"FALSE ", "0 "},
                                         {"FALSE", "FALSE"},
                                         {"tRuE,fAlSe;;", "1,0;;"},
                                         {"TRUEVALUE x", "TRUEVALUE x"},
                                         {"FALSEx TRUE y", "FALSEx 1 y"},
                                         {"xtrue y", "xtrue y"},
                                         {"'true' \"false\" x", "'true' \"false\" x"},
                                         {"\"it's\" true x", "\"it's\" 1 x"},
                                         {"'a\"b' true x", "'a\"b' 1 x"},
                                         {"\xC3true\x80x",
                                          "\xC3"
                                          "1\x80x"},             // bytes from 0x80 up separate
                                         {"TRUE\0 xyz"sv, "1"},  // the result ends at a NUL
                                         {"TRU\xC5 x", "TRU\xC5 x"}}) {
    EXPECT_EQ(replaceSqlBooleans(c.sql), c.expected) << c.sql;
  }
}

}  // namespace
}  // namespace zel::strings
