// Linux: random bytes and thread ids straight from the kernel. Raw system calls, because the
// getrandom and gettid wrappers need a newer glibc than the oldest we run on (2.17).
#if defined(__linux__)

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/platform.h"

namespace zel::platform {

void secureRandomBytes(std::span<std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    const long got = syscall(SYS_getrandom, bytes.data(), bytes.size(), 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return detail::fillFromRand(bytes);
    bytes = bytes.subspan(static_cast<std::size_t>(got));
  }
}

std::uint32_t currentThreadId() noexcept {
  return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

}  // namespace zel::platform

#endif
