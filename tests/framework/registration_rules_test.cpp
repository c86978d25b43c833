// Version rules and declaration rewriting, called directly on the plug-in code.
#include <gtest/gtest.h>

#include "framework/plugin_state.h"
#include "framework/registration.h"

namespace {

TEST(DebugSwitch, AcceptsOneTrueOrYesInAnyCase) {
  for (const char* on : {"1", "true", "TRUE", "True", "yes", "Yes", "YES"})
    EXPECT_TRUE(zel::debugSwitchedOnBy(on)) << on;
  for (const char* off : {"", "0", "2", "no", "on", "false", "yess", "tru", "1 "})
    EXPECT_FALSE(zel::debugSwitchedOnBy(off)) << off;
}

TEST(FlagAdjustment, ReplacesTargetFlagsOnOldHostsAndClearsTheMarker) {
  const struct {
    std::uint32_t flags;
    double version;
    std::uint32_t expected;
  } cases[] = {
      {0x308, 2019.0, 4},        {0x308, 2020.02, 0x308}, {0x708, 2019.0, 0x708},
      {0x318, 2019.0, 0x14},     {4, 2019.0, 4},          {0x40000, 2010.029, 4},
      {0x40000, 2010.02, 0},     {0x40010, 2025.0, 0x14}, {0x40308, 2019.0, 4},
      {0x40308, 2020.02, 0x30C}, {0x20, 2019.0, 0x20},
  };
  for (const auto& c : cases)
    EXPECT_EQ(zel::adjustedFlags(c.flags, c.version), c.expected)
        << std::hex << c.flags << " on " << c.version;
}

TEST(DeclarationRewriting, ExtensionForm) {
  const struct {
    const char* declaration;
    const char* expected;
  } cases[] = {
      {"RTFDataZEL(SkipParagraphs as boolean = false) as string",
       "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false) as string"},
      {"Title as string", "Title(extends ref as StyledText) as string"},
      {"Refresh", "Refresh(extends ref as StyledText)"},
      // An empty parameter list keeps its comma.
      {"Count() as integer", "Count(extends ref as StyledText, ) as integer"},
      {"Odd (x as integer)", "Odd(extends ref as StyledText) (x as integer)"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(zel::extensionFormDeclaration(c.declaration, "StyledText"), c.expected);
}

TEST(DeclarationRewriting, AssignmentForm) {
  const struct {
    const char* declaration;
    const char* expected;
  } cases[] = {
      {"RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false) as string",
       "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false, assigns value as "
       "string)"},
      {"Title as string", "Title(assigns value as string)"},
  };
  for (const auto& c : cases) EXPECT_EQ(zel::assignmentFormDeclaration(c.declaration), c.expected);
  EXPECT_EQ(zel::assignmentFormDeclaration("NoParenthesisNoSpace"), std::nullopt);
}

TEST(DeclarationRewriting, CutsAt999Characters) {
  const std::string longName(1200, 'x');
  EXPECT_EQ(zel::extensionFormDeclaration(longName, "StyledText").size(), 999u);
  EXPECT_EQ(zel::assignmentFormDeclaration(longName + " as string")->size(), 999u);
}

TEST(ModuleRegistration, OnlyBetween2013And3000) {
  for (double version : {2013.0, 2019.0, 2025.03, 2999.99})
    EXPECT_TRUE(zel::registersIntoModule(version));
  for (double version : {0.0, 2012.5, 2012.99, 3000.0, 3001.0})
    EXPECT_FALSE(zel::registersIntoModule(version));
}

}  // namespace
