#include "strings/utf8_repair_adapters.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "bridge/memory_block.h"
#include "framework/exceptions.h"
#include "strings/utf8_repair.h"

namespace zel::adapters {
namespace {

// A negative size reads as no data.
std::span<const std::uint8_t> pointedBytes(const void* data, RBInteger size) {
  if (data == nullptr || size <= 0) return {};
  return {static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)};
}

// No data gives the nil array; data without readable strings an empty one.
REALarray readableStringArray(std::span<const std::uint8_t> data, RBInteger minLength) {
  if (data.empty()) return nullptr;
  const std::vector<std::string_view> runs = strings::readableStrings(data, minLength);
  const std::vector<std::string> items(runs.begin(), runs.end());
  return buildStringArray(items, encoding::kUTF8);
}

// Built counted: the repaired text keeps its zero bytes.
REALstring repairedText(std::span<const std::uint8_t> data, REALstring placeholder) {
  if (data.empty()) return nullptr;
  HostText filler(placeholder);
  return buildString(strings::repairUtf8(data, filler.utf8()), encoding::kUTF8);
}

}  // namespace

REALarray GetStringsFromDataZEL_Ptr(void* data, RBInteger size, RBInteger minLength) noexcept {
  return guarded(OnFailure::raise,
                 [&] { return readableStringArray(pointedBytes(data, size), minLength); });
}

REALarray GetStringsFromDataZEL_MemoryBlock(REALobject data, RBInteger minLength) noexcept {
  return guarded(OnFailure::raise, [&] {
    const MemoryBlockView block(data);
    return readableStringArray(block.bytes(), minLength);
  });
}

REALarray GetStringsFromDataZEL_String(REALstring data, RBInteger minLength) noexcept {
  return guarded(OnFailure::raise, [&] {
    const HostStringBytes bytes(data);
    return readableStringArray(bytes.bytes(), minLength);
  });
}

REALstring CheckUTF8ZEL_Ptr(void* data, RBInteger size, REALstring placeholder) noexcept {
  return guarded(OnFailure::raise,
                 [&] { return repairedText(pointedBytes(data, size), placeholder); });
}

REALstring CheckUTF8ZEL_MemoryBlock(REALobject mem, REALstring placeholder) noexcept {
  return guarded(OnFailure::raise, [&] {
    const MemoryBlockView block(mem);
    return repairedText(block.bytes(), placeholder);
  });
}

REALstring CheckUTF8ZEL_String(REALstring data, REALstring placeholder) noexcept {
  return guarded(OnFailure::raise, [&] {
    const HostStringBytes bytes(data);
    return repairedText(bytes.bytes(), placeholder);
  });
}

}  // namespace zel::adapters
