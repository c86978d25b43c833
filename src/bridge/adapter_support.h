// What every registered function needs around its kernel: host results built from native
// buffers, and a handle that releases an intermediate host string on every path.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "sdk/host_types.h"

namespace zel {

// One reference to a host string; released at scope exit unless handed to the host.
class OwnedString {
 public:
  OwnedString() noexcept = default;
  explicit OwnedString(REALstring s) noexcept : string_(s) {}
  ~OwnedString() { reset(); }
  OwnedString(OwnedString&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  OwnedString& operator=(OwnedString&& other) noexcept {
    if (this != &other) reset(std::exchange(other.string_, nullptr));
    return *this;
  }
  OwnedString(const OwnedString&) = delete;
  OwnedString& operator=(const OwnedString&) = delete;

  REALstring get() const noexcept { return string_; }
  explicit operator bool() const noexcept { return string_ != nullptr; }
  // The reference passes to the caller, typically as a registered function's result.
  [[nodiscard]] REALstring handOver() noexcept { return std::exchange(string_, nullptr); }
  void reset(REALstring s = nullptr) noexcept;

 private:
  REALstring string_ = nullptr;
};

// Results follow the builders' rules: empty text gives nil; single-byte text that is all ASCII is
// tagged ASCII; UTF-16 and UTF-32 come back as UTF-8.
REALstring buildString(std::string_view bytes, std::uint32_t encoding) noexcept;
REALstring buildString(std::u16string_view units) noexcept;
REALstring buildString(std::u32string_view codePoints) noexcept;

// The caller's own argument as the result (nothing changed): one more reference.
REALstring shareString(REALstring argument) noexcept;

// A string() result; empty items become nil elements. Nil when the host cannot make the array.
REALarray buildStringArray(std::span<const std::string> items, std::uint32_t encoding) noexcept;

// A MemoryBlock result; nil for no bytes, OutOfMemoryException when the block cannot be made.
REALobject buildMemoryBlock(std::span<const std::uint8_t> bytes) noexcept;

}  // namespace zel
