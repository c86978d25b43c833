#include "text/simd_path.h"

#include <array>
#include <atomic>
#include <cstddef>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace zel::text {
namespace {

#if defined(__x86_64__)
// AVX2 needs the processor's instructions and the system's saving of the YMM registers.
bool processorRunsAvx2() noexcept {
  constexpr unsigned kFeatureLeaf = 1;
  constexpr unsigned kExtendedFeatureLeaf = 7;
  constexpr unsigned kXmmAndYmmState = 0x6;
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (__get_cpuid(kFeatureLeaf, &a, &b, &c, &d) == 0) return false;
  if ((c & bit_OSXSAVE) == 0 || (c & bit_AVX) == 0) return false;
  unsigned stateLow = 0, stateHigh = 0;
  __asm__("xgetbv" : "=a"(stateLow), "=d"(stateHigh) : "c"(0));
  if ((stateLow & kXmmAndYmmState) != kXmmAndYmmState) return false;
  if (__get_cpuid_count(kExtendedFeatureLeaf, 0, &a, &b, &c, &d) == 0) return false;
  return (b & bit_AVX2) != 0;
}
#endif

struct SupportedPaths {
  std::array<SimdPath, 3> paths{};
  std::size_t count = 0;
};

SupportedPaths detectPaths() noexcept {
  SupportedPaths found;
  found.paths[found.count++] = SimdPath::portable;
#if defined(__x86_64__)
  found.paths[found.count++] = SimdPath::sse2;
  if (processorRunsAvx2()) found.paths[found.count++] = SimdPath::avx2;
#elif defined(__aarch64__)
  found.paths[found.count++] = SimdPath::neon;
#endif
  return found;
}

const SupportedPaths& supported() noexcept {
  static const SupportedPaths paths = detectPaths();
  return paths;
}

std::atomic<SimdPath>& forcedPath() noexcept {
  static std::atomic<SimdPath> path{supportedSimdPaths().back()};
  return path;
}

}  // namespace

const char* simdPathName(SimdPath path) noexcept {
  switch (path) {
    case SimdPath::sse2:
      return "sse2";
    case SimdPath::avx2:
      return "avx2";
    case SimdPath::neon:
      return "neon";
    case SimdPath::portable:
      break;
  }
  return "portable";
}

std::span<const SimdPath> supportedSimdPaths() noexcept {
  const SupportedPaths& paths = supported();
  return {paths.paths.data(), paths.count};
}

SimdPath activeSimdPath() noexcept {
  return forcedPath().load(std::memory_order_relaxed);
}

void forceSimdPath(SimdPath path) noexcept {
  forcedPath().store(path, std::memory_order_relaxed);
}

}  // namespace zel::text
