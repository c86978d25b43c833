// Captures what is written to standard error (the plug-in's debug log sink) by pointing file
// descriptor 2 at an anonymous temporary file; a file, unlike a pipe, never blocks the writer.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

#include "stand_in_host.h"

namespace zelhost {
namespace {

std::mutex captureMutex;
int savedDescriptor = -1;
std::FILE* captureFile = nullptr;

}  // namespace

void captureLog(bool on) {
  const std::lock_guard lock(captureMutex);
  std::fflush(stderr);
  if (captureFile != nullptr) {
    dup2(savedDescriptor, STDERR_FILENO);
    close(savedDescriptor);
    std::fclose(captureFile);
    captureFile = nullptr;
    savedDescriptor = -1;
  }
  if (!on) return;
  captureFile = std::tmpfile();
  if (captureFile == nullptr) return;
  savedDescriptor = dup(STDERR_FILENO);
  dup2(fileno(captureFile), STDERR_FILENO);
}

std::vector<std::string> capturedLog() {
  const std::lock_guard lock(captureMutex);
  std::vector<std::string> lines;
  if (captureFile == nullptr) return lines;
  std::fflush(stderr);
  struct stat status {};
  if (fstat(fileno(captureFile), &status) != 0) return lines;
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t got = pread(fileno(captureFile), text.data() + done, text.size() - done,
                              static_cast<off_t>(done));
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  text.resize(done);
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
