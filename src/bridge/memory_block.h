// Access to the host's MemoryBlock: data pointer and size, new blocks, and a view for arguments.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sdk/host_types.h"

namespace zel {

// Null for nil or when the block's data method cannot be loaded.
void* memoryBlockData(REALobject block) noexcept;
// 0 for nil or when "Size" cannot be read.
RBInteger memoryBlockSize(REALobject block) noexcept;
// A new block (one reference) of at least `size` bytes, or nil; host exceptions raised while
// constructing are absorbed.
REALobject newMemoryBlock(RBInteger size) noexcept;
// A new block holding a copy of the bytes; nil for no bytes. Raises OutOfMemoryException when
// the block cannot be made.
REALobject REALBuildMemoryblock(const void* bytes, RBInteger length) noexcept;

// A MemoryBlock argument, locked while the view lives. Nil or a block without data gives no
// bytes.
struct MemoryBlockView {
  REALobject block = nullptr;
  const std::uint8_t* data = nullptr;
  RBInteger size = 0;

  MemoryBlockView() noexcept = default;
  // Opened at once, as openMemoryBlockView does.
  explicit MemoryBlockView(REALobject source, RBInteger offset = 0, RBInteger length = 0) noexcept;
  ~MemoryBlockView() { release(); }
  MemoryBlockView(const MemoryBlockView&) = delete;
  MemoryBlockView& operator=(const MemoryBlockView&) = delete;

  std::span<const std::uint8_t> bytes() const noexcept {
    return {data, data == nullptr || size <= 0 ? 0 : static_cast<std::size_t>(size)};
  }
  std::string_view view() const noexcept {
    return {reinterpret_cast<const char*>(data), bytes().size()};
  }
  void release() noexcept;
};

// Points the view at `block`, letting go of the block it held. `size` 0 takes the block's own
// size. The offset is the caller's to check.
void openMemoryBlockView(MemoryBlockView& view, REALobject block, RBInteger offset = 0,
                         RBInteger size = 0) noexcept;

}  // namespace zel
