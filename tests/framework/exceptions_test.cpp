// Native failures become host exceptions with the right class and message.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "base/out_of_memory_error.h"
#include "framework/exceptions.h"
#include "framework/plugin_state.h"
#include "stand_in_host.h"

namespace {

class ExceptionTranslation : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    zelhost::configure({});
    REALPluginMain(&zelhost::resolve);
  }
  void TearDown() override { EXPECT_EQ(zelhost::liveCounts(), zelhost::LiveCounts{}); }

  static zelhost::RaisedException raisedBy(const std::function<void()>& body) {
    zel::guarded(zel::OnFailure::raise, body);
    auto raised = zelhost::takeRaisedException();
    EXPECT_TRUE(raised.has_value());
    return raised.value_or(zelhost::RaisedException{});
  }
};

class Unlisted : public std::exception {
 public:
  const char* what() const noexcept override { return ""; }
};

TEST_F(ExceptionTranslation, MapsEachStandardFailure) {
  const struct {
    std::function<void()> body;
    const char* className;
    const char* message;
  } cases[] = {
      {[] { throw std::bad_alloc(); }, "OutOfMemoryException",
       "Failed to allocate memory: std::bad_alloc"},
      {[] { throw std::range_error("r"); }, "OutOfBoundsException", "C++ reports range error: r"},
      {[] { throw std::out_of_range(""); }, "OutOfBoundsException", "C++ reports range error."},
      {[] { throw std::overflow_error("big"); }, "OutOfBoundsException",
       "C++ reports overflow error: big"},
      {[] { throw std::underflow_error("small"); }, "OutOfBoundsException",
       "C++ reports underflow error: small"},
      {[] { throw std::invalid_argument("odd"); }, "RuntimeException", "C++ Exception: odd"},
      {[] { throw Unlisted(); }, "RuntimeException", "C++ Exception."},
      {[] { throw 42; }, "RuntimeException", "Sorry, but there was an unnamed C++ Exception."},
  };
  for (const auto& c : cases) {
    const auto raised = raisedBy(c.body);
    EXPECT_EQ(raised.className, c.className);
    EXPECT_EQ(raised.message, c.message);
    EXPECT_EQ(raised.errorNumber, 0);
  }
}

TEST_F(ExceptionTranslation, QuietGuardSwallowsOnlyAllocationFailures) {
  EXPECT_EQ(zel::guarded(zel::OnFailure::emptyIfOutOfMemory,
                         []() -> RBInteger { throw std::bad_alloc(); }),
            0);
  EXPECT_FALSE(zelhost::takeRaisedException());
  zel::guarded(zel::OnFailure::emptyIfOutOfMemory,
               []() -> RBInteger { throw std::out_of_range("x"); });
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised);
  EXPECT_EQ(raised->className, "OutOfBoundsException");
}

TEST_F(ExceptionTranslation, OwnMessageGuardKeepsWhatTheFailureSays) {
  const struct {
    std::function<void()> body;
    const char* className;
    const char* message;
  } cases[] = {
      {[] { throw std::bad_alloc(); }, "OutOfMemoryException", "std::bad_alloc"},
      {[] { throw zel::OutOfMemoryError("no room"); }, "OutOfMemoryException", "no room"},
      {[] { throw std::out_of_range("far"); }, "RuntimeException", "far"},
      {[] { throw 42; }, "RuntimeException", "Sorry, but there was an unnamed C++ Exception."},
  };
  for (const auto& c : cases) {
    zel::guarded(zel::OnFailure::raiseOwnMessage, c.body);
    const auto raised = zelhost::takeRaisedException();
    ASSERT_TRUE(raised) << c.message;
    EXPECT_EQ(raised->className, c.className);
    EXPECT_EQ(raised->message, c.message);
  }
}

TEST_F(ExceptionTranslation, GuardReturnsTheEmptyResult) {
  EXPECT_EQ(
      zel::guarded(zel::OnFailure::raise, []() -> RBInteger { throw std::runtime_error("x"); }), 0);
  EXPECT_EQ(zel::guarded(zel::OnFailure::raise, []() -> REALstring { throw std::bad_alloc(); }),
            nullptr);
  EXPECT_EQ(zel::guarded(zel::OnFailure::raise, []() -> RBInteger { return 7; }), 7);
  zelhost::takeRaisedException();
  zelhost::takeRaisedException();
}

TEST_F(ExceptionTranslation, UnknownClassFallsBackToRuntimeException) {
  zel::RaiseHostException("NoSuchException", "message kept");
  const auto raised = zelhost::takeRaisedException();
  ASSERT_TRUE(raised);
  EXPECT_EQ(raised->className, "RuntimeException");
  EXPECT_EQ(raised->message, "message kept");
}

TEST_F(ExceptionTranslation, NothingIsRaisedWhenNoExceptionCanBeMade) {
  zelhost::failNextAllocations(3);  // message, the class, RuntimeException
  zel::RaiseHostException("OutOfBoundsException", "lost");
  zelhost::failNextAllocations(0);
  EXPECT_FALSE(zelhost::takeRaisedException());
}

TEST_F(ExceptionTranslation, UnnamedFailureIsLogged) {
  zel::setDebugEnabled(true);
  zelhost::captureLog(true);
  zel::guarded(zel::OnFailure::raise, [] { throw 1; });
  const auto captured = zelhost::capturedLog();
  zelhost::captureLog(false);
  zel::setDebugEnabled(false);
  zelhost::takeRaisedException();
  EXPECT_EQ(captured, std::vector<std::string>{"ZEL Debug: Unnamed C++ Exception."});
}

}  // namespace
