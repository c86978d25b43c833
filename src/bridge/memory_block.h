// Access to the host's MemoryBlock: data pointer and size, new blocks, and a view for arguments.
#pragma once

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

// A MemoryBlock argument's bytes, the block locked while the view lives. `size` 0 takes the
// block's own size; the offset is the caller's to check. Nil or a block without data gives no
// bytes.
class MemoryBlockView {
 public:
  explicit MemoryBlockView(REALobject block, RBInteger offset = 0, RBInteger size = 0) noexcept;
  ~MemoryBlockView();
  MemoryBlockView(const MemoryBlockView&) = delete;
  MemoryBlockView& operator=(const MemoryBlockView&) = delete;

  std::span<const std::uint8_t> bytes() const noexcept { return bytes_; }
  std::string_view view() const noexcept {
    return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
  }

 private:
  REALobject block_;
  std::span<const std::uint8_t> bytes_;
};

}  // namespace zel
