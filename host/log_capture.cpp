// The debug log as lines: the operating system layer captures, this splits.
#include <mutex>

#include "os.h"
#include "stand_in_host.h"

namespace zelhost {
namespace {

std::mutex captureMutex;

}  // namespace

void captureLog(bool on) {
  const std::lock_guard lock(captureMutex);
  os::captureDebugOutput(on);
}

std::vector<std::string> capturedLog() {
  const std::lock_guard lock(captureMutex);
  const std::string text = os::capturedDebugOutput();
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

}  // namespace zelhost
