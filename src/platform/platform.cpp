#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__APPLE__)
#include <pthread.h>
#include <stdlib.h>
#include <strings.h>
#include <unistd.h>
#else
#include <strings.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace zel::platform {

void* allocateZeroed(std::size_t bytes) noexcept {
#if defined(_WIN32)
  const HGLOBAL handle = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, bytes == 0 ? 1 : bytes);
  return handle;
#else
  return std::calloc(bytes == 0 ? 1 : bytes, 1);
#endif
}

void releaseBlock(void* block) noexcept {
#if defined(_WIN32)
  if (block != nullptr) GlobalFree(block);
#else
  std::free(block);
#endif
}

#if !defined(_WIN32) && !defined(__APPLE__)
namespace {
void fillFromRand(std::span<std::uint8_t> bytes) noexcept {
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(std::rand());
}
}  // namespace
#endif

void secureRandomBytes(std::span<std::uint8_t> bytes) noexcept {
#if defined(_WIN32)
  for (auto& byte : bytes) {
    unsigned int value = 0;
    byte = static_cast<std::uint8_t>(rand_s(&value) == 0 ? value : std::rand());
  }
#elif defined(__APPLE__)
  arc4random_buf(bytes.data(), bytes.size());
#else
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    // The system call, not the glibc 2.25 wrapper: the shipped library loads on older glibc.
    const long got = syscall(SYS_getrandom, bytes.data() + filled, bytes.size() - filled, 0);
    if (got <= 0) {
      fillFromRand(bytes.subspan(filled));
      return;
    }
    filled += static_cast<std::size_t>(got);
  }
#endif
}

void debuggerOutput(const char* text) noexcept {
#if defined(_WIN32)
  OutputDebugStringA(text);
#else
  std::fprintf(stderr, "%s\n", text);
  std::fflush(stderr);
#endif
}

std::uint32_t currentThreadId() noexcept {
#if defined(_WIN32)
  return GetCurrentThreadId();
#elif defined(__APPLE__)
  std::uint64_t id = 0;
  pthread_threadid_np(nullptr, &id);
  return static_cast<std::uint32_t>(id);
#else
  return static_cast<std::uint32_t>(syscall(SYS_gettid));  // gettid() needs glibc 2.30
#endif
}

std::uint32_t currentProcessId() noexcept {
#if defined(_WIN32)
  return static_cast<std::uint32_t>(GetCurrentProcessId());  // arm64 runtimes lack _getpid
#else
  return static_cast<std::uint32_t>(getpid());
#endif
}

std::optional<std::string> environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

int compareIgnoringCase(const char* a, const char* b, std::size_t count) noexcept {
#if defined(_WIN32)
  return _strnicmp(a, b, count);
#else
  return strncasecmp(a, b, count);
#endif
}

}  // namespace zel::platform
