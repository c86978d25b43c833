// Every allocation that a registered function makes inside the plug-in, failed one at a time: no
// crash, nothing left alive, no misuse of the host, and the outcome is the function's normal
// result or the failure it documents.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>

#include "oom/oom_rows.h"
#include "oom/oom_walk.h"
#include "support/plugin_fixture.h"

namespace zeltest::oom {
namespace {

// Failure points walked per function, printed once the suite ends.
class WalkTally : public ::testing::Environment {
 public:
  static void add(const std::string& row, std::size_t points) {
    const std::lock_guard lock(mutex_);
    points_[row] += points;
  }
  void TearDown() override {
    std::size_t total = 0;
    for (const auto& [row, points] : points_) total += points;
    if (!points_.empty()) {
      std::cout << "[ oom walk ] " << total << " failure points in " << points_.size() << " rows\n";
    }
  }

 private:
  static inline std::mutex mutex_;
  static inline std::map<std::string, std::size_t> points_;
};

const auto* const kTally = ::testing::AddGlobalTestEnvironment(new WalkTally);

// The library is loaded once for the suite: a fresh copy per row would cost more than the walks.
class OomWalk : public ::testing::TestWithParam<Row> {
 protected:
  static void SetUpTestSuite() {
    zelhost::configure({});
    zelhost::loadPlugin(ZEL_FAILPOINT_PLUGIN_PATH);
  }
  void SetUp() override { baseline_ = zelhost::liveCounts(); }
  void TearDown() override {
    EXPECT_EQ(zelhost::liveCounts(), baseline_)
        << "host strings, objects or string data left alive";
    EXPECT_EQ(zelhost::protocolErrors(), std::vector<std::string>{}) << "misuse of the host";
  }

  void walkRow() {
    const Row& row = GetParam();
    row.prepare();
    const Failpoints failpoints;
    const Walk walked = walk(failpoints, row.call);
    ASSERT_EQ(walked.completed.exception, nullptr)
        << "the call fails without any failed allocation";

    std::vector<Outcome> emptyText;
    for (const auto& call : row.emptyTextCalls) emptyText.push_back(call());
    for (const FailedStep& step : walked.failed) {
      EXPECT_EQ(judge(row.onFailure, step.outcome, walked.completed, emptyText), "")
          << "allocation " << step.nth << " of " << walked.allocations << " failed; outcome "
          << ::testing::PrintToString(step.outcome) << ", normally "
          << ::testing::PrintToString(walked.completed);
    }
    if (!row.reaches.empty()) {
      EXPECT_TRUE(std::any_of(walked.failed.begin(), walked.failed.end(),
                              [&](const FailedStep& step) {
                                return step.outcome.exception.is_object() &&
                                       step.outcome.exception.at("message") == row.reaches;
                              }))
          << "no failed allocation raised \"" << row.reaches << "\"";
    }
    WalkTally::add(std::string(::testing::UnitTest::GetInstance()->current_test_suite()->name()) +
                       "/" + row.name,
                   walked.failed.size());
    RecordProperty("failure_points", static_cast<int>(walked.failed.size()));
  }

 private:
  zelhost::LiveCounts baseline_;
};

TEST_P(OomWalk, EveryFailedAllocationEndsAsDocumented) {
  walkRow();
}

INSTANTIATE_TEST_SUITE_P(AllFunctions, OomWalk, ::testing::ValuesIn(allRows()),
                         [](const ::testing::TestParamInfo<Row>& row) { return row.param.name; });

// With the debug log on, every call also formats log lines: their allocations fail too, and a
// failed log line must change nothing else.
class OomWalkWithDebugLog : public OomWalk {
 protected:
  static void SetUpTestSuite() {
    setenv("ZELDEBUG", "1", 1);
    OomWalk::SetUpTestSuite();
  }
  static void TearDownTestSuite() { unsetenv("ZELDEBUG"); }
  void SetUp() override {
    zelhost::captureLog(true);
    OomWalk::SetUp();
  }
  void TearDown() override {
    zelhost::captureLog(false);
    OomWalk::TearDown();
  }
};

TEST_P(OomWalkWithDebugLog, EveryFailedAllocationEndsAsDocumented) {
  walkRow();
}

INSTANTIATE_TEST_SUITE_P(OneInputPerFunction, OomWalkWithDebugLog,
                         ::testing::ValuesIn(rowsWithInput("utf8_long")),
                         [](const ::testing::TestParamInfo<Row>& row) { return row.param.name; });

// The judge itself: which outcomes of a failed allocation pass for which documentation.
TEST(OomJudge, AcceptsExactlyTheDocumentedOutcomes) {
  const Outcome normal{{{"encoding", 1536}, {"hex", "41"}}, nullptr};
  const Outcome longer{{{"encoding", 1536}, {"hex", "41ee42ee43"}}, nullptr};
  const Outcome nil{nullptr, nullptr};
  const Outcome partial{{{"encoding", 1536}, {"hex", "4"}}, nullptr};
  const auto raised = [](const char* className, const char* message, nlohmann::json result) {
    return Outcome{std::move(result), {{"class", className}, {"message", message}}};
  };
  const OnFailure quiet{true, {}, false, false, false};
  const OnFailure raising{
      false, {"Failed to allocate -?[0-9]+ bytes of memory\\."}, false, false, false};
  const OnFailure emptyText{false, {}, true, false, false};
  const OnFailure dropping{false, {}, false, false, true};
  struct Case {
    const char* what;
    OnFailure onFailure;
    Outcome failed;
    bool accepted;
  };
  const Case cases[] = {
      {"normal result", raising, normal, true},
      {"quiet nil", quiet, nil, true},
      {"quiet nil undocumented", raising, nil, false},
      {"partial result", quiet, partial, false},
      {"documented message", raising,
       raised("OutOfMemoryException", "Failed to allocate 16 bytes of memory.", nullptr), true},
      {"message without its count", raising,
       raised("OutOfMemoryException", "Failed to allocate  bytes of memory.", nullptr), false},
      {"other class", raising,
       raised("RuntimeException", "Failed to allocate 16 bytes of memory.", nullptr), false},
      {"result beside the exception", raising,
       raised("OutOfMemoryException", "Failed to allocate 1 bytes of memory.", normal.result),
       false},
      {"raised where quiet", quiet,
       raised("OutOfMemoryException", "Failed to allocate 1 bytes of memory.", nullptr), false},
      {"empty text result", emptyText, partial, true},
      {"empty text undocumented", quiet, partial, false},
      {"one text dropped", dropping, Outcome{{{"encoding", 1536}, {"hex", "41ee43"}}, nullptr},
       true},
      {"text dropped undocumented", raising,
       Outcome{{{"encoding", 1536}, {"hex", "4142"}}, nullptr}, false},
      {"two texts dropped", dropping, Outcome{{{"encoding", 1536}, {"hex", "414243"}}, nullptr},
       false},
      {"dropped text in another encoding", dropping,
       Outcome{{{"encoding", 134217984}, {"hex", "41ee43"}}, nullptr}, false},
  };
  for (const Case& c : cases) {
    const Outcome& expected = c.onFailure.textDropped ? longer : normal;
    EXPECT_EQ(judge(c.onFailure, c.failed, expected, {partial}).empty(), c.accepted) << c.what;
  }
}

}  // namespace
}  // namespace zeltest::oom
