#include "bridge/adapter_support.h"

#include "bridge/memory_block.h"
#include "bridge/string_builders.h"
#include "framework/host_api.h"

namespace zel {

REALstring buildString(std::string_view bytes, std::uint32_t encoding) noexcept {
  return REALBuildUnicodeString(bytes.data(), static_cast<RBInteger>(bytes.size()), encoding);
}

REALstring buildString(std::u16string_view units) noexcept {
  return REALBuildUnicodeString(units.data(), static_cast<RBInteger>(units.size() * 2),
                                encoding::kUTF16);
}

REALstring buildString(std::u32string_view codePoints) noexcept {
  return REALBuildUnicodeString(codePoints.data(), static_cast<RBInteger>(codePoints.size() * 4),
                                encoding::kUTF32);
}

REALstring shareString(REALstring argument) noexcept {
  if (argument != nullptr) host::REALLockString(argument);
  return argument;
}

REALarray buildStringArray(std::span<const std::string> items, std::uint32_t encoding) noexcept {
  REALarray array = host::RuntimeArrayCreateSingleDimBoundedArray(kArrayOfString, -1);
  if (array == nullptr) return nullptr;
  RBInteger index = 0;
  for (const std::string& item : items) {
    const OwnedString element(buildString(item, encoding));
    host::PluginStringArrayInsert(array, index++, element.get());
  }
  return array;
}

REALobject buildMemoryBlock(std::string_view bytes) noexcept {
  return REALBuildMemoryblock(bytes.data(), static_cast<RBInteger>(bytes.size()));
}

}  // namespace zel
