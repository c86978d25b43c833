#include "support/family_fuzzer.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <vector>

#include "support/host_call.h"

namespace zeltest {
namespace {

std::vector<const zelhost::RegisteredMember*> membersOf(const Family& family) {
  std::vector<const zelhost::RegisteredMember*> members;
  for (const zelhost::RegisteredMember& member : zelhost::registration().members) {
    // Hosts from 2013 on receive the functions as module methods, older ones as loose methods.
    const bool global = member.kind == zelhost::RegisteredMember::Kind::Method ||
                        member.kind == zelhost::RegisteredMember::Kind::ModuleMethod;
    if (global &&
        std::ranges::find(family.functions, member.parsed.name) != family.functions.end()) {
      members.push_back(&member);
    }
  }
  return members;
}

}  // namespace

int fuzzFamily(const Family& family, const std::uint8_t* data, std::size_t size) {
  static const std::vector<const zelhost::RegisteredMember*> members = [&] {
    auto found = membersOf(family);
    if (found.empty()) fail("no registered function of this family");
    return found;
  }();
  FuzzedDataProvider input(data, size);
  const zelhost::RegisteredMember& member =
      *members[input.ConsumeIntegralInRange<std::size_t>(0, members.size() - 1)];
  const auto raised = callWithFuzzedArguments(member, input, family.sizeParameters);
  checkAfterCall(member.declaration, raised, family.exceptions);
  return 0;
}

}  // namespace zeltest
