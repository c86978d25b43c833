// What every registered function needs around its kernel: host results built from native
// buffers, and a handle that releases an intermediate host string on every path.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "bridge/host_string_bytes.h"
#include "framework/exceptions.h"
#include "framework/host_api.h"
#include "sdk/host_types.h"

namespace zel {

// One reference to a host value; released at scope exit unless handed to the host.
template <class Handle, void (*Release)(Handle) noexcept>
class OwnedReference {
 public:
  OwnedReference() noexcept = default;
  explicit OwnedReference(Handle handle) noexcept : handle_(handle) {}
  ~OwnedReference() { reset(); }
  OwnedReference(OwnedReference&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)) {}
  OwnedReference& operator=(OwnedReference&& other) noexcept {
    if (this != &other) reset(std::exchange(other.handle_, nullptr));
    return *this;
  }
  OwnedReference(const OwnedReference&) = delete;
  OwnedReference& operator=(const OwnedReference&) = delete;

  Handle get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != nullptr; }
  // The reference passes to the caller, typically as a registered function's result.
  [[nodiscard]] Handle handOver() noexcept { return std::exchange(handle_, nullptr); }
  void reset(Handle handle = nullptr) noexcept {
    if (handle_ != nullptr) Release(handle_);
    handle_ = handle;
  }

 private:
  Handle handle_ = nullptr;
};

using OwnedString = OwnedReference<REALstring, &host::REALUnlockString>;
using OwnedObject = OwnedReference<REALobject, &host::REALUnlockObject>;

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
REALobject buildMemoryBlock(std::string_view bytes) noexcept;

// Runs a kernel over the bytes of the string arguments, borrowed for the call (nil reads as no
// bytes), and hands back its number or Boolean.
template <class Kernel, class... Strings>
auto readBytes(OnFailure policy, Kernel&& kernel, Strings... strings) noexcept {
  return guarded(policy, [&] { return kernel(HostStringBytes(strings).view()...); });
}

// The same for a kernel that makes bytes: they become a new host string in `resultEncoding`
// (no bytes give nil).
template <class Kernel, class... Strings>
REALstring bytesToString(OnFailure policy, std::uint32_t resultEncoding, Kernel&& kernel,
                         Strings... strings) noexcept {
  return guarded(policy, [&] {
    return buildString(kernel(HostStringBytes(strings).view()...), resultEncoding);
  });
}

}  // namespace zel
