// Each kind of finding of the definition checks, on records broken one way at a time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "framework/definition_checks.h"
#include "framework/plugin_state.h"
#include "stand_in_host.h"

namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

void noop() {}
const REALproc kFunction = reinterpret_cast<REALproc>(&noop);

// Runs the checks with the log on and returns what they wrote, prefix removed.
std::vector<std::string> findings(const std::function<void()>& check) {
  zel::setDebugEnabled(true);
  zelhost::captureLog(true);
  check();
  const auto captured = zelhost::capturedLog();
  zelhost::captureLog(false);
  zel::setDebugEnabled(false);
  std::vector<std::string> lines;
  for (const auto& line : captured) {
    constexpr std::string_view prefix = "ZEL Debug: ";
    lines.push_back(line.starts_with(prefix) ? line.substr(prefix.size()) : line);
  }
  return lines;
}

// One way to break a record, and what the checks then write.
template <class Record>
struct Breakage {
  const char* name;
  std::function<void(Record&)> breakIt;
  std::vector<std::string> expected;
};

class DefinitionChecks : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    zelhost::configure({});
    REALPluginMain(&zelhost::resolve);
  }

  REALattribute attributes[2]{{"Hidden", ""}, {"Description", "text"}};
  REALmethodDefinition methods[2]{
      {kFunction, nullptr, "First(a as string) as string", flags::kConsoleSafe, 0, nullptr},
      {kFunction, kFunction, "Second as string", flags::kConsoleSafe, 2, attributes}};
  const char* enumValues[2]{"One", "Two"};
  REALproperty properties[1]{{nullptr, "Size", "integer", flags::kConsoleSafe, kFunction, kFunction,
                              0, nullptr, 2, enumValues, 0, nullptr}};
  REALclassDefinition extension{};
  REALmoduleDefinition module{};

  void SetUp() override {
    extension.version = kCurrentREALControlVersion;
    extension.name = "StyledText";
    extension.methods = methods;
    extension.methodCount = 2;
    extension.mFlags = flags::kConsoleSafe;
    module.version = kCurrentREALControlVersion;
    module.name = "StringGlobalsZEL";
    module.methods = methods;
    module.methodCount = 2;
    module.properties = properties;
    module.propertyCount = 1;
    module.mFlags = flags::kConsoleSafe;
  }
};

TEST_F(DefinitionChecks, SoundRecordsGiveNoFindings) {
  EXPECT_THAT(findings([&] { zel::checkClassExtension(&extension); }), IsEmpty());
  EXPECT_THAT(findings([&] { zel::checkModule(&module); }), IsEmpty());
  EXPECT_THAT(findings([&] { zel::checkGlobalMethod(methods[0]); }), IsEmpty());
}

TEST_F(DefinitionChecks, ClassExtensionFindings) {
  REALevent event{"Changed()", 0, 0, nullptr};
  const Breakage<REALclassDefinition> cases[] = {
      {"version",
       [](auto& c) { c.version = 14; },
       {"Error: The class extension StyledText has the wrong kCurrentREALControlVersion: 14 vs. "
        "15"}},
      {"lower-case name",
       [](auto& c) { c.name = "styledText"; },
       {"Error: The class extension name styledText does not start with capital letter."}},
      {"method count without array",
       [](auto& c) { c.methods = nullptr; },
       {"Error: The class extension StyledText has the wrong methodCount value: 2",
        "Error: method StyledText.0 is NULL."}},
      {"events",
       [&](auto& c) {
         c.events = &event;
         c.eventCount = 1;
       },
       {"Error: The class extension StyledText has events: 1",
        "Warning: The class extension StyledText has the eventCount value: 1"}},
      {"console-safe method in unsafe class",
       [](auto& c) { c.mFlags = 0; },
       {"Console-safe method in console-unsafe class: First(a as string) as string",
        "Console-safe method in console-unsafe class: Second as string"}},
  };
  for (const auto& c : cases) {
    REALclassDefinition broken = extension;
    c.breakIt(broken);
    EXPECT_THAT(findings([&] { zel::checkClassExtension(&broken); }), ElementsAreArray(c.expected))
        << c.name;
  }
  EXPECT_THAT(findings([] { zel::checkClassExtension(nullptr); }),
              ElementsAreArray({"Error: A class extension registered is nil."}));
}

TEST_F(DefinitionChecks, MethodRowFindings) {
  REALattribute broken[2]{{nullptr, "v"}, {"Name", nullptr}};
  const Breakage<REALmethodDefinition> cases[] = {
      {"nil function",
       [](auto& m) { m.function = nullptr; },
       {"Error: The method StringGlobalsZEL.First(a as string) as string has nil function."}},
      {"attribute without name or value",
       [&](auto& m) {
         m.attributes = broken;
         m.attributeCount = 2;
       },
       {"Error: StringGlobalsZEL.First(a as string) as string has an attribute without name! "
        "Index: 0",
        "Error: StringGlobalsZEL.First(a as string) as string has an attribute without value! "
        "Name: "
        "Name Index: 1"}},
  };
  for (const auto& c : cases) {
    REALmethodDefinition rows[1]{methods[0]};
    c.breakIt(rows[0]);
    REALmoduleDefinition owner = module;
    owner.methods = rows;
    owner.methodCount = 1;
    owner.properties = nullptr;
    owner.propertyCount = 0;
    EXPECT_THAT(findings([&] { zel::checkModule(&owner); }), ElementsAreArray(c.expected))
        << c.name;
  }
}

TEST_F(DefinitionChecks, PropertyFindings) {
  const char* spaced[2]{"One", " Two"};
  const Breakage<REALproperty> cases[] = {
      {"unaligned plain offset",
       [](auto& p) {
         p.getter = kPlainOffsetAccessor;
         p.param = 6;
       },
       {"Error: The property StringGlobalsZEL.Size has unaligned offset 6."}},
      {"double by plain offset",
       [](auto& p) {
         p.type = "Double";
         p.getter = kPlainOffsetAccessor;
         p.setter = kPlainOffsetAccessor;
       },
       {"Error: The property StringGlobalsZEL.Size needs custom getter.",
        "Error: The property StringGlobalsZEL.Size needs custom setter."}},
      {"enum value with a leading space",
       [&](auto& p) { p.enumEntries = spaced; },
       {"Error: The enum value 1 in property StringGlobalsZEL.Size has extra space in value."}},
      {"enum count without array",
       [](auto& p) { p.enumEntries = nullptr; },
       {"Error: The property StringGlobalsZEL.Size has wrong enumCount: 2",
        "Error: property enum is nil for StringGlobalsZEL.Size: 2."}},
      {"attributes without count",
       [&](auto& p) { p.attributes = attributes; },
       {"Error: The property StringGlobalsZEL.Size has attributes: 0",
        "Error: The property StringGlobalsZEL.Size has the wrong attributeCount value: 0"}},
  };
  for (const auto& c : cases) {
    REALproperty rows[1]{properties[0]};
    c.breakIt(rows[0]);
    REALmoduleDefinition owner = module;
    owner.properties = rows;
    EXPECT_THAT(findings([&] { zel::checkModule(&owner); }), ElementsAreArray(c.expected))
        << c.name;
  }
}

TEST_F(DefinitionChecks, ModuleFindings) {
  const Breakage<REALmoduleDefinition> cases[] = {
      {"version",
       [](auto& m) { m.version = 7; },
       {"Error: The module StringGlobalsZEL has the wrong kCurrentREALControlVersion: 7 vs. 15"}},
      {"sdk level is a valid version", [](auto& m) { m.version = 13; }, {}},
      {"nameless", [](auto& m) { m.name = nullptr; }, {"Error: A module without name."}},
      {"method count without array",
       [](auto& m) { m.methods = nullptr; },
       {"Error: The module StringGlobalsZEL has the wrong methodCount value: 2",
        "Error: method array is nil while count is not zero!",
        "Error: method StringGlobalsZEL.0 is NULL."}},
      {"console-safe property in unsafe module",
       [](auto& m) { m.mFlags = 0; },
       {"Console-safe method in console-unsafe module: First(a as string) as string",
        "Console-safe method in console-unsafe module: Second as string",
        "Console-safe property in console-unsafe module: Size"}},
  };
  for (const auto& c : cases) {
    REALmoduleDefinition broken = module;
    c.breakIt(broken);
    EXPECT_THAT(findings([&] { zel::checkModule(&broken); }), ElementsAreArray(c.expected))
        << c.name;
  }
  EXPECT_THAT(findings([] { zel::checkModule(nullptr); }),
              ElementsAreArray({"Error: A module registered is nil."}));
}

TEST_F(DefinitionChecks, NothingIsWrittenWhileTheLogIsOff) {
  REALclassDefinition broken = extension;
  broken.version = 1;
  zelhost::captureLog(true);
  zel::checkClassExtension(&broken);
  EXPECT_THAT(zelhost::capturedLog(), IsEmpty());
  zelhost::captureLog(false);
}

}  // namespace
