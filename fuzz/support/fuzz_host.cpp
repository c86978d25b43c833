#include "support/fuzz_host.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace zeltest {
namespace {

zelhost::LiveCounts gBaseline;

bool isDocumented(const zelhost::RaisedException& raised, const DocumentedException& documented) {
  if (raised.className != documented.className) return false;
  const std::string_view message = raised.message;
  return documented.prefixOnly ? message.starts_with(documented.message)
                               : message == documented.message;
}

}  // namespace

void loadPlugin() {
  zelhost::configure({});
  zelhost::loadPlugin(ZEL_PLUGIN_PATH);
  gBaseline = zelhost::liveCounts();
}

void fail(std::string_view what, std::string_view detail) {
  std::fprintf(stderr, "FUZZ FINDING: %.*s\n%.*s\n", static_cast<int>(what.size()), what.data(),
               static_cast<int>(detail.size()), detail.data());
  std::abort();
}

void checkAfterCall(std::string_view call, const std::optional<zelhost::RaisedException>& raised,
                    std::span<const DocumentedException> documented) {
  const zelhost::LiveCounts now = zelhost::liveCounts();
  if (now != gBaseline) {
    fail("host values left alive after " + std::string(call),
         "strings " + std::to_string(now.strings - gBaseline.strings) + ", objects " +
             std::to_string(now.objects - gBaseline.objects) + ", string data " +
             std::to_string(now.stringData - gBaseline.stringData));
  }
  const std::vector<std::string> misuse = zelhost::protocolErrors();
  if (!misuse.empty()) fail("misuse of the host in " + std::string(call), misuse.front());
  if (!raised) return;
  for (const DocumentedException& candidate : documented) {
    if (isDocumented(*raised, candidate)) return;
  }
  fail("undocumented exception from " + std::string(call),
       raised->className + ": " + raised->message);
}

}  // namespace zeltest
