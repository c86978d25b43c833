// Any bytes assigned to RTFDataZEL: the reader never raises, leaves nothing alive, uses the host
// correctly and appends only runs that hold text.
#include <cstdint>
#include <string>
#include <string_view>

#include "support/fuzz_host.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zeltest::loadPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto assignRtf =
      zelhost::bind<void, REALobject, RBBoolean, REALstring>("RTFDataZEL");
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const REALobject styledText = zelhost::newInstance("StyledText");
  const REALstring rtf = zelhost::makeString(bytes, encoding::kUTF8);
  assignRtf(styledText, RBBoolean{0}, rtf);
  for (const zelhost::StyledRun& run : zelhost::styledRuns(styledText)) {
    if (run.text.empty()) zeltest::fail("the reader appended a run without text");
  }
  zelhost::release(rtf);
  zelhost::release(styledText);
  zeltest::checkAfterCall("RTFDataZEL = rtf", zelhost::takeRaisedException(), {});
  return 0;
}
