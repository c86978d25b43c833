// An allocation failure whose host message is fixed text: the guard raises OutOfMemoryException
// with what() as it stands instead of the generic translation of std::bad_alloc. Header-only, so
// kernels can throw it without depending on the host.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string_view>

namespace zel {

class OutOfMemoryError : public std::bad_alloc {
 public:
  explicit OutOfMemoryError(std::string_view message) noexcept {
    message.copy(message_.data(), message_.size() - 1);
  }

  // "Failed to allocate N bytes of memory.", N shown as a signed 32-bit number.
  static OutOfMemoryError forBytes(std::size_t bytes) noexcept {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "Failed to allocate %d bytes of memory.",
                  static_cast<std::int32_t>(static_cast<std::uint32_t>(bytes)));
    return OutOfMemoryError(text.data());
  }

  const char* what() const noexcept override { return message_.data(); }

 private:
  std::array<char, 64> message_{};
};

}  // namespace zel
