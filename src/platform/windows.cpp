// Windows: the system's global memory, the debugger output, rand_s and the thread id.
#if defined(_WIN32)

// rand_s is declared only when this is defined before the C runtime's headers.
#define _CRT_RAND_S
#include <string.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"

namespace zel::platform {

void* allocateZeroed(std::size_t bytes) noexcept {
  // Fixed memory: the handle is the address, no lock needed.
  return GlobalAlloc(GPTR, bytes == 0 ? 1 : bytes);
}

void* resizeZeroed(void* block, std::size_t /*oldBytes*/, std::size_t newBytes) noexcept {
  if (block == nullptr) return allocateZeroed(newBytes);
  // GMEM_ZEROINIT zero-fills the growth; GMEM_MOVEABLE lets a fixed block move to grow.
  return GlobalReAlloc(block, newBytes == 0 ? 1 : newBytes, GMEM_MOVEABLE | GMEM_ZEROINIT);
}

void releaseBlock(void* block) noexcept {
  if (block != nullptr) GlobalFree(block);
}

void secureRandomBytes(std::span<std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    unsigned int draw = 0;
    const std::size_t count = std::min(bytes.size(), sizeof draw);
    if (rand_s(&draw) == 0)
      std::memcpy(bytes.data(), &draw, count);
    else
      detail::fillFromRand(bytes.first(count));
    bytes = bytes.subspan(count);
  }
}

void debuggerOutput(const char* text) noexcept {
  OutputDebugStringA(text);
}

std::uint32_t currentThreadId() noexcept {
  return GetCurrentThreadId();
}

std::uint32_t currentProcessId() noexcept {
  return GetCurrentProcessId();
}

int compareIgnoringCase(const char* a, const char* b, std::size_t count) noexcept {
  return _strnicmp(a, b, count);
}

}  // namespace zel::platform

#endif
