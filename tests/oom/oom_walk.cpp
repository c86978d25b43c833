#include "oom/oom_walk.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "stand_in_host.h"

namespace zeltest::oom {
namespace {

// A walk that goes on this long has lost its way: no call here allocates nearly as often.
constexpr long kMostSteps = 20000;

struct LibraryCloser {
  void operator()(void* library) const { dlclose(library); }
};

template <class Function>
Function symbol(void* library, const char* name) {
  void* address = dlsym(library, name);
  if (address == nullptr) throw std::runtime_error(std::string("plug-in lacks ") + name);
  return reinterpret_cast<Function>(address);
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "{result " << outcome.result.dump() << ", exception " << outcome.exception.dump() << "}";
}

bool isEmptyResult(const nlohmann::json& result) {
  return result.is_null() || result == false || (result.is_number() && result == 0);
}

Failpoints::Failpoints() {
  // The host loads a private copy of the library; find that copy through its registered code.
  const auto& members = zelhost::registration().members;
  if (members.empty()) throw std::runtime_error("the plug-in registered nothing");
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(members.front().function), &info) == 0) {
    throw std::runtime_error("registered code lies in no library");
  }
  const std::unique_ptr<void, LibraryCloser> library(
      dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD));
  if (!library) throw std::runtime_error(std::string("cannot reopen ") + info.dli_fname);
  fail_ = symbol<failpoints::FailAllocation>(library.get(), failpoints::kFailAllocation);
  failed_ = symbol<failpoints::AllocationFailed>(library.get(), failpoints::kAllocationFailed);
  count_ = symbol<failpoints::AllocationCount>(library.get(), failpoints::kAllocationCount);
}

Walk walk(const Failpoints& failpoints, const std::function<Outcome()>& call) {
  Walk result;
  for (long nth = 1; nth <= kMostSteps; ++nth) {
    const zelhost::LiveCounts before = zelhost::liveCounts();
    failpoints.arm(nth);
    Outcome outcome = call();
    const bool reached = failpoints.fired();
    EXPECT_EQ(zelhost::liveCounts(), before) << "left alive after allocation " << nth << " failed";
    EXPECT_EQ(zelhost::protocolErrors(), std::vector<std::string>{})
        << "host misused after allocation " << nth << " failed";
    if (!reached) {
      result.completed = std::move(outcome);
      result.allocations = failpoints.allocations();
      return result;
    }
    result.failed.push_back({nth, std::move(outcome)});
  }
  ADD_FAILURE() << "no call finished within " << kMostSteps << " allocations";
  return result;
}

Outcome callRegistered(const std::string& name, const std::vector<std::string>& args) {
  const nlohmann::json reply = nlohmann::json::parse(zelhost::callJson(name, args));
  EXPECT_EQ(reply.at("leaked"), (nlohmann::json{{"strings", 0}, {"objects", 0}})) << name;
  return {reply.at("result"), reply.at("exception")};
}

}  // namespace zeltest::oom
