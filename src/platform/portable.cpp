// The parts that the C++ standard library already makes the same everywhere.
#include <cstdlib>

#include "platform/platform.h"

namespace zel::platform {

std::optional<std::string> environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

namespace detail {
void fillFromRand(std::span<std::uint8_t> bytes) noexcept {
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(std::rand());
}
}  // namespace detail

}  // namespace zel::platform
