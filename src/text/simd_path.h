// Which vector instructions the text kernels use: the best this processor runs, chosen once.
#pragma once

#include <cstdint>
#include <span>

namespace zel::text {

enum class SimdPath : std::uint8_t { portable, sse2, avx2, neon };

const char* simdPathName(SimdPath path) noexcept;

// The paths this build and processor can run, the portable one first and the best last.
std::span<const SimdPath> supportedSimdPaths() noexcept;

SimdPath activeSimdPath() noexcept;

// For tests that compare the paths: every later call in the process takes `path`, which must be
// one of the supported ones.
void forceSimdPath(SimdPath path) noexcept;

}  // namespace zel::text
