#include <string>

#include "host_test_support.h"

namespace zeltest {
namespace {

using Kind = zelhost::RegisteredMember::Kind;

TEST_F(FakePluginFixture, CapturesEveryKindOfRegistration) {
  const auto& members = registration().members;
  ASSERT_EQ(members.size(), 1u + 15u + 2u + 1u);
  EXPECT_EQ(members.front().kind, Kind::ClassExtensionMethod);
  EXPECT_EQ(members.front().owner, "MemoryBlock");
  EXPECT_EQ(members.front().flags, 0x308u);
  EXPECT_NE(members.front().setter, nullptr);
  EXPECT_EQ(members[1].kind, Kind::Method);
  EXPECT_EQ(members[1].declaration, "EchoZEL(s as String) as String");
  EXPECT_EQ(members.back().kind, Kind::ModuleProperty);
  EXPECT_EQ(members.back().owner, "FakeModuleZEL");
  EXPECT_EQ(members.back().declaration, "Debugging as Boolean");
  EXPECT_EQ(members.back().flags, 0x26u);
  EXPECT_EQ(registration().pluginVersions, std::vector<int>{13});
  EXPECT_EQ(registration().modules, std::vector<std::string>{"FakeModuleZEL"});
  EXPECT_EQ(zelhost::findMethod("FakeModuleZEL.AddZEL")->kind, Kind::ModuleMethod);
  EXPECT_EQ(zelhost::findMethod("addzel")->kind, Kind::Method);
  EXPECT_EQ(zelhost::findMethod("NoSuchZEL"), nullptr);
}

TEST_F(FakePluginFixture, EachLoadIsAFreshInstance) {
  zelhost::assign("FakeModuleZEL.Debugging", RBBoolean{1});
  EXPECT_EQ(zelhost::call<RBBoolean>("Debugging"), 1);
  zelhost::configure({2012.0, true});
  zelhost::loadPlugin(ZEL_FAKE_PLUGIN_PATH);
  EXPECT_EQ(zelhost::call<RBBoolean>("Debugging"), 0);
  EXPECT_EQ(registration().pluginVersions, std::vector<int>{9});
}

TEST_F(FakePluginFixture, TypedCallsCheckTheDeclaration) {
  HostString text("abc", encoding::kUTF8);
  HostString upper(zelhost::call<REALstring>("UpperZEL(s as String) as String", text.get()));
  EXPECT_EQ(upper.bytes(), "ABC");
  EXPECT_EQ(zelhost::call<RBInteger>("AddZEL", RBInteger{40}, RBInteger{2}), 42);
  EXPECT_EQ(zelhost::call<RBBoolean>("NotZEL", RBBoolean{0}), 1);
  EXPECT_EQ(zelhost::call<double>("HalfZEL", 3.0), 1.5);
  EXPECT_EQ(zelhost::call<RBColor>("SwapZEL", RBColor{0x112233}), 0x332211u);
  HostObject block(zelhost::makeMemoryBlock("xyz"));
  EXPECT_EQ(zelhost::call<RBInteger>("PickZEL", block.get()), 2);
  EXPECT_EQ(zelhost::call<RBInteger>("PickZEL", text.get()), 1);
  HostString tag(zelhost::call<REALstring>("TagZEL", block.get(), text.get()));
  EXPECT_EQ(tag.bytes(), "abc:3");
  HostString one("1", encoding::kUTF8);
  HostString five("12345", encoding::kUTF8);
  zelhost::assign("MemoryBlock.TagZEL", block.get(), text.get(), one.get());
  EXPECT_EQ(zelhost::memoryBlockBytes(block), "x");
  zelhost::call<void>("FakeModuleZEL.TagZEL", block.get(), text.get(), five.get());
  EXPECT_EQ(zelhost::memoryBlockBytes(block), std::string("x\0\0\0\0", 5));

  EXPECT_THROW(zelhost::call<RBInteger>("AddZEL", RBInteger{1}), std::logic_error);
  EXPECT_THROW(zelhost::call<RBInteger>("UpperZEL", text.get()), std::logic_error);
  EXPECT_THROW(zelhost::call<RBInteger>("NoSuchZEL"), std::logic_error);
  EXPECT_THROW(zelhost::assign("AddZEL", RBInteger{1}, RBInteger{2}, RBInteger{3}),
               std::logic_error);
}

TEST_F(FakePluginFixture, MemoryBlocksArraysAndExceptionsThroughCalls) {
  char bytes[] = "hello";
  HostObject copy(zelhost::call<REALobject>("CopyZEL", static_cast<void*>(bytes), RBInteger{5}));
  EXPECT_EQ(zelhost::memoryBlockBytes(copy), "hello");
  zelhost::setMemoryBlockConstructorFailing();
  EXPECT_EQ(zelhost::call<REALobject>("CopyZEL", static_cast<void*>(bytes), RBInteger{5}), nullptr);
  EXPECT_FALSE(zelhost::takeRaisedException().has_value());

  HostString text("ab", encoding::kUTF8);
  HostObject parts(zelhost::call<REALarray>("SplitZEL", text.get()));
  EXPECT_EQ(zelhost::stringArrayItems(parts.array()),
            (std::vector<std::optional<std::string>>{"a", "b"}));

  HostString message("out of range", encoding::kUTF8);
  EXPECT_EQ(zelhost::call<REALstring>("FailZEL", message.get()), nullptr);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "OutOfBoundsException");
  EXPECT_EQ(raised->message, "out of range");
  EXPECT_EQ(raised->errorNumber, 7);
}

// Dynamic calls need libffi, present where zelhost is built.
#if defined(ZELHOST_PATH)
TEST_F(FakePluginFixture, DynamicCallsChooseOverloadsAndCountLeaks) {
  const struct {
    const char* name;
    std::vector<std::string> args;
    const char* json;
  } cases[] = {
      {"AddZEL", {"40"}, "\"result\": 42"},
      {"AddZEL", {"-1", "-2"}, "\"result\": -3"},
      {"HalfZEL", {"0.1"}, "\"result\": 0.050000000000000003"},
      {"NotZEL", {"false"}, "\"result\": true"},
      {"EchoZEL", {"nil"}, "\"result\": null"},
      {"EchoZEL", {"hex:"}, "{\"encoding\": 65535, \"hex\": \"\", \"text\": \"\"}"},
      {"EchoZEL", {"hex:c3a9"}, "{\"encoding\": 65535, \"hex\": \"c3a9\"}, "},
      {"EchoZEL", {"hex/0x201:e9"}, "{\"encoding\": 513, \"hex\": \"e9\", \"text\": \"\xC3\xA9\"}"},
      {"UpperZEL",
       {"text:a\"b"},
       "{\"encoding\": 134217984, \"hex\": \"412242\", \"text\": \"A\\\"B\"}"},
      {"PickZEL", {"mem:00"}, "\"result\": 2"},
      {"PickZEL", {"mem"}, "\"result\": 1"},
      {"SizeZEL", {"mem:0102"}, "\"result\": 2"},
      {"CopyZEL", {"ptr:6869", "2"}, "\"result\": {\"hex\": \"6869\"}"},
      {"SplitZEL", {"ab"}, "[{\"encoding\": 134217984, \"hex\": \"61\", \"text\": \"a\"}, {"},
      {"FailZEL",
       {"why"},
       "\"exception\": {\"class\": \"OutOfBoundsException\", \"message\": \"why\"}"},
      {"LeakZEL", {"x"}, "\"leaked\": {\"strings\": 1, \"objects\": 0}"},
  };
  for (const auto& c : cases) {
    const std::string json = zelhost::callJson(c.name, c.args);
    EXPECT_NE(json.find(c.json), std::string::npos) << c.name << " gave " << json;
    if (std::string(c.name) != "LeakZEL") {
      EXPECT_NE(json.find("\"leaked\": {\"strings\": 0, \"objects\": 0}"), std::string::npos)
          << json;
    }
  }
  for (const auto& [name, args] :
       std::vector<std::pair<const char*, std::vector<std::string>>>{{"NoSuchZEL", {}},
                                                                     {"AddZEL", {}},
                                                                     {"AddZEL", {"1", "2", "3"}},
                                                                     {"AddZEL", {"x"}},
                                                                     {"NotZEL", {"yes"}},
                                                                     {"EchoZEL", {"hex:abc"}},
                                                                     {"CopyZEL", {"6869", "2"}}}) {
    EXPECT_THROW(zelhost::callJson(name, args), std::invalid_argument) << name;
  }
  EXPECT_EQ(zelhost::call<RBInteger>("UnleakZEL"), 1);
}
#endif

TEST_F(FakePluginFixture, LogLinesOfThePluginAreCaptured) {
  zelhost::captureLog(true);
  HostString text("hello", encoding::kUTF8);
  EXPECT_EQ(zelhost::call<RBInteger>("LogZEL", text.get()), 5);
  EXPECT_EQ(zelhost::capturedLog(), std::vector<std::string>{"ZEL Debug: hello"});
}

}  // namespace
}  // namespace zeltest
