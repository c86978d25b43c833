// Rewriting CR, LF, CR LF and LF CR into one chosen line ending.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace zel::strings {

// Yield to the host whenever the read position's address is a multiple of this.
inline constexpr std::size_t kLineEndingYieldStride = std::size_t{1} << 24;

// Each CR, LF, CR LF and LF CR becomes one newLine; CR CR and LF LF become two.
// With yield set, yieldToHost is called about once per kLineEndingYieldStride bytes read;
// without it, never.
std::string replaceLineEndings(std::string_view text, std::string_view newLine, bool yield,
                               const std::function<void()>& yieldToHost);

}  // namespace zel::strings
