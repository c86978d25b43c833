// Small helpers shared by the kernel suites, which link only the kernels.
#pragma once

#include <string_view>
#include <vector>

namespace zel::strings {

// A heap copy of exactly these bytes, so that the sanitizer build sees any read past them.
struct ExactBytes {
  explicit ExactBytes(std::string_view bytes) : copy(bytes.begin(), bytes.end()) {}
  operator std::string_view() const { return {copy.data(), copy.size()}; }
  std::vector<char> copy;
};

}  // namespace zel::strings
