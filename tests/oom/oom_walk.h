// Walking the allocation failures of one call: the call is repeated with its 1st, 2nd, 3rd ...
// allocation inside the plug-in failing, until a call no longer reaches the armed allocation.
#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "oom/failpoint_control.h"

namespace zeltest::oom {

// What one call handed the host: its result in the JSON of zelhost's --json form, and the
// exception it raised ({"class", "message"}), or null.
struct Outcome {
  nlohmann::json result;
  nlohmann::json exception;
  bool operator==(const Outcome&) const = default;
};
void PrintTo(const Outcome& outcome, std::ostream* out);

// The empty result of a registered function: nil, 0, false or 0.0.
bool isEmptyResult(const nlohmann::json& result);

// The failpoint controls of the plug-in copy loaded for the current test.
class Failpoints {
 public:
  Failpoints();
  void arm(long nth) const { fail_(nth); }
  bool fired() const { return failed_(); }
  long allocations() const { return count_(); }

 private:
  failpoints::FailAllocation fail_ = nullptr;
  failpoints::AllocationFailed failed_ = nullptr;
  failpoints::AllocationCount count_ = nullptr;
};

struct FailedStep {
  long nth;  // the allocation that failed, counted from the start of the call
  Outcome outcome;
};

struct Walk {
  std::vector<FailedStep> failed;
  Outcome completed;     // the call that reached no armed allocation
  long allocations = 0;  // what that call allocated
};

// Walks `call`; after every step checks that no host string, object or string data is left
// alive and that the host saw no misuse.
Walk walk(const Failpoints& failpoints, const std::function<Outcome()>& call);

// One registered global function called through the stand-in host's dynamic call.
Outcome callRegistered(const std::string& name, const std::vector<std::string>& args);

}  // namespace zeltest::oom
