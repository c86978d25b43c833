#include "allocation_meter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Each block carries its size in front, kept at the strictest fundamental alignment.
constexpr std::size_t kHeader = alignof(std::max_align_t);

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> baseline{0};

void* allocate(std::size_t bytes) noexcept {
  auto* block = static_cast<unsigned char*>(std::malloc(bytes + kHeader));
  if (block == nullptr) return nullptr;
  *reinterpret_cast<std::size_t*>(block) = bytes;
  const std::size_t now = inUse.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  std::size_t high = peak.load(std::memory_order_relaxed);
  while (now > high && !peak.compare_exchange_weak(high, now, std::memory_order_relaxed)) {
  }
  return block + kHeader;
}

void release(void* pointer) noexcept {
  if (pointer == nullptr) return;
  auto* block = static_cast<unsigned char*>(pointer) - kHeader;
  inUse.fetch_sub(*reinterpret_cast<std::size_t*>(block), std::memory_order_relaxed);
  std::free(block);
}

void* allocateOrThrow(std::size_t bytes) {
  if (void* block = allocate(bytes)) return block;
  throw std::bad_alloc();
}

}  // namespace

namespace zeltest {

void resetPeakHeap() noexcept {
  const std::size_t now = inUse.load(std::memory_order_relaxed);
  baseline.store(now, std::memory_order_relaxed);
  peak.store(now, std::memory_order_relaxed);
}

std::size_t peakHeapGrowth() noexcept {
  return peak.load(std::memory_order_relaxed) - baseline.load(std::memory_order_relaxed);
}

}  // namespace zeltest

void* operator new(std::size_t bytes) {
  return allocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
  return allocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return allocate(bytes);
}
void operator delete(void* pointer) noexcept {
  release(pointer);
}
void operator delete[](void* pointer) noexcept {
  release(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
  release(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
  release(pointer);
}
void operator delete(void* pointer, const std::nothrow_t&) noexcept {
  release(pointer);
}
void operator delete[](void* pointer, const std::nothrow_t&) noexcept {
  release(pointer);
}
