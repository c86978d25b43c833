#include <gtest/gtest.h>

#include "stand_in_host.h"

namespace {

TEST(DeclarationTest, ParsesTheFormsTheHostReads) {
  const auto rewritten = zelhost::parseDeclaration(
      "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false, assigns value as "
      "string)");
  EXPECT_EQ(rewritten.name, "RTFDataZEL");
  ASSERT_EQ(rewritten.parameters.size(), 3u);
  EXPECT_TRUE(rewritten.parameters[0].extends);
  EXPECT_EQ(rewritten.parameters[0].type, "styledtext");
  EXPECT_EQ(rewritten.parameters[1].name, "SkipParagraphs");
  EXPECT_EQ(rewritten.parameters[1].defaultValue, "false");
  EXPECT_TRUE(rewritten.parameters[2].assigns);
  EXPECT_EQ(rewritten.parameters[2].name, "value");
  EXPECT_EQ(rewritten.resultType, "");

  const auto compact = zelhost::parseDeclaration(
      "RandomBytesStringZEL(Length as integer, ASCII as boolean=false) As String ( )");
  ASSERT_EQ(compact.parameters.size(), 2u);
  EXPECT_EQ(compact.parameters[1].name, "ASCII");
  EXPECT_EQ(compact.parameters[1].defaultValue, "false");
  EXPECT_EQ(compact.resultType, "string()");

  const auto emptyTail = zelhost::parseDeclaration("X(extends ref as StyledText, ) as Integer");
  EXPECT_EQ(emptyTail.parameters.size(), 1u);
  const auto quoted = zelhost::parseDeclaration("T(p as String = \"a, b\") as String");
  EXPECT_EQ(quoted.parameters.size(), 1u) << "a comma inside a string default is not a separator";

  const auto property = zelhost::parseDeclaration("Debugging as Boolean");
  EXPECT_EQ(property.name, "Debugging");
  EXPECT_TRUE(property.parameters.empty());
  EXPECT_EQ(property.resultType, "boolean");
}

TEST(DeclarationTest, SignaturesIgnoreNamesAndCase) {
  using zelhost::parseDeclaration;
  EXPECT_TRUE(zelhost::sameSignature(parseDeclaration("LenB( s as string ) as integer"),
                                     parseDeclaration("lenb(Text As String) As Integer")));
  EXPECT_FALSE(zelhost::sameSignature(parseDeclaration("F(a as string) as integer"),
                                      parseDeclaration("F(a as string, b as string) as integer")));
  EXPECT_FALSE(zelhost::sameSignature(parseDeclaration("F(a as string) as integer"),
                                      parseDeclaration("F(a as string) as double")));
}

}  // namespace
