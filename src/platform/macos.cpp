// macOS: arc4random_buf never fails, and the thread id is 64 bits wide, taken to 32.
#if defined(__APPLE__)

#include <pthread.h>
#include <stdlib.h>

#include "platform/platform.h"

namespace zel::platform {

void secureRandomBytes(std::span<std::uint8_t> bytes) noexcept {
  arc4random_buf(bytes.data(), bytes.size());
}

std::uint32_t currentThreadId() noexcept {
  std::uint64_t id = 0;
  pthread_threadid_np(nullptr, &id);
  return static_cast<std::uint32_t>(id);
}

}  // namespace zel::platform

#endif
