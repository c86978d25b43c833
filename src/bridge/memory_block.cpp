#include "bridge/memory_block.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "bridge/adapter_support.h"
#include "framework/debug_log.h"
#include "framework/exceptions.h"
#include "framework/host_api.h"
#include "framework/lazy_address.h"

namespace zel {
namespace {

using DataMethod = void* (*)(REALobject);
using Constructor = void (*)(REALobject, RBInteger);

// Both methods are the same for every block.
constinit LazyAddress<DataMethod> dataMethod;
constinit LazyAddress<Constructor> constructorMethod;

template <class Method>
Method loadMethod(LazyAddress<Method>& slot, REALobject block, const char* declaration) noexcept {
  return slot.get([&]() noexcept {
    return reinterpret_cast<Method>(host::REALLoadObjectMethod(block, declaration));
  });
}

struct Construction {
  RBInteger size;
  REALobject block;
};

void constructBlock(void* context) noexcept {
  auto& construction = *static_cast<Construction*>(context);
  OwnedObject instance(host::PluginNewInstance("MemoryBlock"));
  if (!instance) return;
  const auto constructor =
      loadMethod(constructorMethod, instance.get(), "Constructor(bytes as Integer)");
  if (constructor == nullptr) return;
  constructor(instance.get(), construction.size);
  if (memoryBlockSize(instance.get()) < construction.size) return;
  construction.block = instance.handOver();
}

void raiseBlockFailure(RBInteger length) noexcept {
  char message[200];
  std::snprintf(message, sizeof message,
                "Failed to allocate a memoryblock with %lld bytes in size.",
                static_cast<long long>(length));
  RaiseHostException("OutOfMemoryException", message);
}

}  // namespace

void* memoryBlockData(REALobject block) noexcept {
  if (block == nullptr) return nullptr;
  const auto method = loadMethod(dataMethod, block, "Operator_Convert() As Ptr");
  return method == nullptr ? nullptr : method(block);
}

RBInteger memoryBlockSize(REALobject block) noexcept {
  RBInteger size = 0;
  if (block == nullptr || !host::REALGetPropValueInteger(block, "Size", &size)) return 0;
  return size;
}

REALobject newMemoryBlock(RBInteger size) noexcept {
  if (size < 0) return nullptr;
  Construction construction{size, nullptr};
  REALobject raised = host::PluginCallFunctionWithExceptionHandler(constructBlock, &construction);
  if (raised != nullptr) host::REALUnlockObject(raised);
  return construction.block;
}

REALobject REALBuildMemoryblock(const void* bytes, RBInteger length) noexcept {
  if (bytes == nullptr || length <= 0) return nullptr;
  try {
    OwnedObject block(newMemoryBlock(length));
    void* data = memoryBlockData(block.get());
    if (data == nullptr) {
      block.reset();
      if (debugEnabled()) debugLogInt64("Error: Failed to allocate memoryblock", length);
      raiseBlockFailure(length);
      return nullptr;
    }
    std::memcpy(data, bytes, static_cast<std::size_t>(length));
    return block.handOver();
  } catch (const std::exception& failure) {
    if (debugEnabled()) debugLogText("Got C++ exception in REALBuildMemoryblock:", failure.what());
  } catch (...) {
    if (debugEnabled()) debugLogText("Got C++ exception in REALBuildMemoryblock:", "");
  }
  raiseBlockFailure(length);
  return nullptr;
}

MemoryBlockView::MemoryBlockView(REALobject source, RBInteger offset, RBInteger length) noexcept {
  openMemoryBlockView(*this, source, offset, length);
}

void MemoryBlockView::release() noexcept {
  if (block != nullptr) host::REALUnlockObject(block);
  block = nullptr;
  data = nullptr;
  size = 0;
}

void openMemoryBlockView(MemoryBlockView& view, REALobject block, RBInteger offset,
                         RBInteger size) noexcept {
  view.release();
  view.size = size;
  if (block != nullptr) {
    host::REALLockObject(block);
    view.block = block;
    if (size == 0) view.size = std::max<RBInteger>(memoryBlockSize(block), 0);
    if (auto* data = static_cast<const std::uint8_t*>(memoryBlockData(block))) {
      view.data = data + offset;
    }
  }
  if (view.data == nullptr && view.size != 0) {
    view.size = 0;
    if (debugEnabled()) debugLogLabel("data is NULL, so size fixed to zero.");
  }
}

}  // namespace zel
