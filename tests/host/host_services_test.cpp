#include <cstdio>
#include <cstring>
#include <string>

#include "host_test_support.h"
#include "platform/platform.h"

namespace zeltest {
namespace {

using namespace std::string_literals;

TEST_F(HostFixture, StringsKeepTheirBytes42BytesBehindTheHandle) {
  HostString inline_("hello", encoding::kUTF8);
  EXPECT_EQ(zelhost::stringStorage(inline_), reinterpret_cast<const char*>(inline_.get()) + 42);
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(inline_.get()) + 42, "hello", 6), 0);
  HostString detached(zelhost::makeDetachedString("hello", encoding::kUTF8));
  EXPECT_NE(zelhost::stringStorage(detached), reinterpret_cast<const char*>(detached.get()) + 42);
  EXPECT_EQ(service<service::StringGetCString>("StringGetCString")(detached),
            zelhost::stringStorage(detached));
  auto lenB = reinterpret_cast<service::LenB>(service<service::REALLoadGlobalMethod>(
      "REALLoadGlobalMethod")(nullptr, "LenB( s as string ) as integer"));
  auto len = reinterpret_cast<service::LenB>(service<service::REALLoadGlobalMethod>(
      "REALLoadGlobalMethod")(nullptr, "len(S As String) As Integer"));
  ASSERT_TRUE(lenB && len);
  HostString accented("\xC3\xA9t\xC3\xA9\xF0\x9F\x98\x80", encoding::kUTF8);
  EXPECT_EQ(lenB(accented), 9);
  EXPECT_EQ(len(accented), 4);
  EXPECT_EQ(len(nullptr), 0);
}

TEST_F(HostFixture, ReferenceCountsAndProtocolErrors) {
  REALstring s = zelhost::makeString("x");
  service<service::REALLockString>("REALLockString")(s);
  EXPECT_EQ(zelhost::referenceCount(s), 2);
  const auto unlock = service<service::REALUnlockString>("REALUnlockString");
  unlock(s);
  unlock(s);
  EXPECT_EQ(zelhost::liveCounts().strings, 0);
  EXPECT_TRUE(zelhost::protocolErrors().empty());
  unlock(s);
  EXPECT_EQ(zelhost::protocolErrors().size(), 1u);
}

TEST_F(HostFixture, MissingAndFailingServicesAndCounters) {
  zelhost::setServiceMissing("REALGetPropValueString");
  EXPECT_EQ(zelhost::resolve("REALGetPropValueString"), nullptr);
  EXPECT_EQ(zelhost::resolve("REALGetPropValueString"), nullptr);
  EXPECT_EQ(zelhost::resolverLookups("REALGetPropValueString"), 2);
  EXPECT_EQ(zelhost::resolve("NoSuchService"), nullptr);
  EXPECT_EQ(zelhost::resolverLookups("NoSuchService"), 1);
  EXPECT_THROW(zelhost::setServiceFailing("NoSuchService"), std::invalid_argument);

  zelhost::setServiceFailing("REALBuildStringWithEncoding");
  const auto build = service<service::REALBuildStringWithEncoding>("REALBuildStringWithEncoding");
  EXPECT_EQ(build("ab", 2, encoding::kUTF8), nullptr);
  EXPECT_EQ(zelhost::serviceCalls("REALBuildStringWithEncoding"), 1);

  zelhost::failNextAllocations(2);
  const auto plain = service<service::REALBuildString>("REALBuildString");
  const auto newInstance = service<service::PluginNewInstance>("PluginNewInstance");
  EXPECT_EQ(plain("ab", 2), nullptr);
  EXPECT_EQ(newInstance("MemoryBlock"), nullptr);
  HostString made(plain("ab", 2));
  EXPECT_EQ(made.encoding(), encoding::kNone);
  EXPECT_EQ(newInstance("NoSuchClass"), nullptr);

  zelhost::configure({2019.01, false});
  EXPECT_EQ(service<service::REALGetRBVersion>("REALGetRBVersion")(), 2019.01);
  EXPECT_EQ(service<service::REALinRuntime>("REALinRuntime")(), 0);
  EXPECT_EQ(zelhost::resolverLookups("REALBuildString"), 0);
}

TEST_F(HostFixture, PropertiesByNameAndType) {
  HostObject exception(zelhost::newInstance("OutOfBoundsException"));
  HostString message("boom", encoding::kUTF8);
  EXPECT_TRUE(service<service::REALSetPropValueString>("REALSetPropValueString")(
      exception, "message", message));
  EXPECT_TRUE(service<service::REALSetPropValueInteger>("REALSetPropValueInteger")(
      exception, "ErrorNumber", -3));
  EXPECT_FALSE(service<service::REALSetPropValueBoolean>("REALSetPropValueBoolean")(exception,
                                                                                    "Message", 1));
  EXPECT_FALSE(
      service<service::REALSetPropValueInteger>("REALSetPropValueInteger")(exception, "Nope", 1));
  REALstring read = nullptr;
  EXPECT_EQ(service<service::REALGetPropValueString>("REALGetPropValueString")(exception, "Message",
                                                                               &read) &
                0xFF,
            1);
  HostString held(read);
  EXPECT_EQ(held.get(), message.get());
  EXPECT_EQ(zelhost::referenceCount(message), 3);
  RBInteger number = 0;
  EXPECT_TRUE(service<service::REALGetPropValueInteger>("REALGetPropValueInteger")(
      exception, "ErrorNumber", &number));
  EXPECT_EQ(number, -3);
  RBBoolean flag = 0;
  EXPECT_FALSE(service<service::REALGetPropValueBool>("REALGetPropValueBool")(
      exception, "ErrorNumber", &flag));
}

TEST_F(HostFixture, MemoryBlockMethodsAndConstructorFailure) {
  const auto load = service<service::REALLoadObjectMethod>("REALLoadObjectMethod");
  const auto handler = service<service::PluginCallFunctionWithExceptionHandler>(
      "PluginCallFunctionWithExceptionHandler");
  struct Work {
    RBInteger size;
    REALobject block;
    service::REALLoadObjectMethod load;
  };
  const auto construct = [](void* context) {
    auto& work = *static_cast<Work*>(context);
    work.block = zelhost::newInstance("MemoryBlock");
    reinterpret_cast<void (*)(REALobject, RBInteger)>(
        work.load(work.block, "constructor(Bytes As integer)"))(work.block, work.size);
  };
  Work ok{5, nullptr, load};
  EXPECT_EQ(handler(construct, &ok), nullptr);
  HostObject block(ok.block);
  auto data = reinterpret_cast<void* (*)(REALobject)>(load(block, "Operator_Convert() As Ptr"));
  std::memcpy(data(block), "abcde", 5);
  EXPECT_EQ(zelhost::memoryBlockBytes(block), "abcde");
  RBInteger size = 0;
  EXPECT_TRUE(
      service<service::REALGetPropValueInteger>("REALGetPropValueInteger")(block, "Size", &size));
  EXPECT_EQ(size, 5);
  EXPECT_EQ(load(block, "Operator_Convert() As Integer"), nullptr);

  zelhost::setMemoryBlockConstructorFailing();
  Work failing{5, nullptr, load};
  HostObject caught(handler(construct, &failing));
  HostObject unbuilt(failing.block);
  EXPECT_EQ(zelhost::className(caught), "OutOfMemoryException");
  EXPECT_EQ(zelhost::memoryBlockBytes(unbuilt), "");
  EXPECT_FALSE(zelhost::takeRaisedException().has_value());

  HostObject dataless(zelhost::makeMemoryBlockWithoutData(4));
  EXPECT_EQ(reinterpret_cast<void* (*)(REALobject)>(load(dataless, "Operator_Convert() As Ptr"))(
                dataless),
            nullptr);
}

TEST_F(HostFixture, RaisedExceptionsReachTheCaller) {
  HostObject exception(zelhost::newInstance("IllegalCastException"));
  HostString message("bad cast", encoding::kUTF8);
  service<service::REALSetPropValueString>("REALSetPropValueString")(exception, "Message", message);
  service<service::RuntimeRaiseException>("RuntimeRaiseException")(exception);
  EXPECT_EQ(zelhost::referenceCount(exception), 2);
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised.has_value());
  EXPECT_EQ(raised->className, "IllegalCastException");
  EXPECT_EQ(raised->message, "bad cast");
  EXPECT_EQ(zelhost::referenceCount(exception), 1);
  EXPECT_FALSE(zelhost::takeRaisedException().has_value());
}

TEST_F(HostFixture, StringArrays) {
  const auto create = service<service::RuntimeArrayCreateSingleDimBoundedArray>(
      "RuntimeArrayCreateSingleDimBoundedArray");
  const auto ubound = service<service::RuntimeUBound>("RuntimeUBound");
  EXPECT_EQ(create(2, -1), nullptr);
  HostObject array(create(kArrayOfString, -1));
  EXPECT_EQ(ubound(array.array()), -1);
  const auto insert =
      service<service::PluginStringArrayInsertProc>("PluginStringArrayInsertProc")(array.array());
  ASSERT_NE(insert, nullptr);
  HostString b("b", encoding::kUTF8);
  HostString a("a", encoding::kUTF8);
  insert(array.array(), 0, b);
  insert(array.array(), 0, a);
  insert(array.array(), 2, nullptr);
  EXPECT_EQ(ubound(array.array()), 2);
  EXPECT_EQ(zelhost::stringArrayItems(array.array()),
            (std::vector<std::optional<std::string>>{"a", "b", std::nullopt}));
  insert(array.array(), 9, a);
  EXPECT_EQ(zelhost::protocolErrors().size(), 1u);
  HostObject bounded(create(kArrayOfString, 1));
  EXPECT_EQ(zelhost::stringArrayItems(bounded.array()).size(), 2u);
}

TEST_F(HostFixture, LogCaptureTakesEveryLineEvenWhenLarge) {
  zelhost::captureLog(true);
  const std::string longLine(100000, 'x');
  for (int i = 0; i < 200; ++i)
    zel::platform::debuggerOutput(("ZEL Debug: " + std::to_string(i) + " " + longLine).c_str());
  auto lines = zelhost::capturedLog();
  ASSERT_EQ(lines.size(), 200u);
  EXPECT_EQ(lines[199], "ZEL Debug: 199 " + longLine);
  zelhost::captureLog(true);
  zel::platform::debuggerOutput("again");
  EXPECT_EQ(zelhost::capturedLog(), std::vector<std::string>{"again"});
  zelhost::captureLog(false);
  EXPECT_TRUE(zelhost::capturedLog().empty());
}

}  // namespace
}  // namespace zeltest
