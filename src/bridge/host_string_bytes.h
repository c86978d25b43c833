// The stored bytes of a host string (or of a MemoryBlock), borrowed for one call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "bridge/memory_block.h"
#include "sdk/host_types.h"

namespace zel {

class HostStringBytes {
 public:
  HostStringBytes() noexcept = default;
  // The bytes as stored; nil gives an empty record.
  explicit HostStringBytes(REALstring s) noexcept;
  // The text converted by the host into `encoding`; empty when the host cannot convert.
  HostStringBytes(REALstring s, std::uint32_t encoding) noexcept;
  // A MemoryBlock's data and size, read through its view.
  explicit HostStringBytes(REALobject block) noexcept;
  ~HostStringBytes() { close(); }
  HostStringBytes(const HostStringBytes&) = delete;
  HostStringBytes& operator=(const HostStringBytes&) = delete;

  const char* data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }
  std::string_view view() const noexcept { return {data_ == nullptr ? "" : data_, size_}; }
  std::span<const std::uint8_t> bytes() const noexcept {
    return {reinterpret_cast<const std::uint8_t*>(data_), size_};
  }

  void close() noexcept;

 private:
  void fixNullData() noexcept;

  REALstring string_ = nullptr;
  MemoryBlockView block_;
  REALstringData stringData_{};
  bool stringDataHeld_ = false;
  const char* data_ = nullptr;
  std::size_t size_ = 0;
};

// The bytes a host string stores inside its own object, writable: a wipe may only go there.
// Nothing when they lie elsewhere.
std::optional<std::span<std::uint8_t>> inlineStorage(REALstring s) noexcept;

}  // namespace zel
