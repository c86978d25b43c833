// Linux and macOS alike: the C allocator, standard error as debugger output, POSIX names.
#if !defined(_WIN32)

#include <strings.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

namespace zel::platform {

void* allocateZeroed(std::size_t bytes) noexcept {
  return std::calloc(bytes == 0 ? 1 : bytes, 1);
}

void* resizeZeroed(void* block, std::size_t oldBytes, std::size_t newBytes) noexcept {
  if (block == nullptr) return allocateZeroed(newBytes);
  auto* resized = static_cast<unsigned char*>(std::realloc(block, newBytes == 0 ? 1 : newBytes));
  if (resized != nullptr && newBytes > oldBytes)
    std::memset(resized + oldBytes, 0, newBytes - oldBytes);
  return resized;
}

void releaseBlock(void* block) noexcept {
  std::free(block);
}

void debuggerOutput(const char* text) noexcept {
  std::fprintf(stderr, "%s\n", text);
  std::fflush(stderr);
}

std::uint32_t currentProcessId() noexcept {
  return static_cast<std::uint32_t>(getpid());
}

int compareIgnoringCase(const char* a, const char* b, std::size_t count) noexcept {
  return strncasecmp(a, b, count);
}

}  // namespace zel::platform

#endif
