#include "bridge/host_string_bytes.h"

#include "framework/debug_log.h"
#include "framework/host_api.h"

namespace zel {

HostStringBytes::HostStringBytes(REALstring s) noexcept : string_(s) {
  if (s == nullptr) return;
  host::REALLockString(s);
  RBInteger length = 0;
  data_ = host::StringGetCString(s, &length);
  size_ = length > 0 ? static_cast<std::size_t>(length) : 0;
  fixNullData();
}

HostStringBytes::HostStringBytes(REALstring s, std::uint32_t encoding) noexcept : string_(s) {
  if (s == nullptr) return;
  host::REALLockString(s);
  if (!host::PluginGetStringData(s, encoding, &stringData_)) {
    if (debugEnabled()) debugLogLabel("REALGetStringData failed.");
    return;
  }
  stringDataHeld_ = true;
  data_ = static_cast<const char*>(stringData_.data);
  size_ = stringData_.length;
  fixNullData();
}

HostStringBytes::HostStringBytes(REALobject block) noexcept {
  openMemoryBlockView(block_, block);
  data_ = reinterpret_cast<const char*>(block_.data);
  size_ = block_.bytes().size();
}

void HostStringBytes::fixNullData() noexcept {
  if (data_ != nullptr || size_ == 0) return;
  size_ = 0;
  if (debugEnabled()) debugLogLabel("data is NULL, so size fixed to zero.");
}

void HostStringBytes::close() noexcept {
  if (string_ != nullptr) host::REALUnlockString(string_);
  block_.release();
  if (stringDataHeld_) {
    if (debugEnabled()) debugLogLabel("REALDisposeStringData");
    host::PluginDisposeStringData(&stringData_);
  }
  string_ = nullptr;
  stringData_ = {};
  stringDataHeld_ = false;
  data_ = nullptr;
  size_ = 0;
}

std::optional<std::span<std::uint8_t>> inlineStorage(REALstring s) noexcept {
  RBInteger size = 0;
  // The caller writes into the host's own storage: that is its purpose.
  char* const data = const_cast<char*>(host::StringGetCString(s, &size));
  const auto offset = static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(data) -
                                                  reinterpret_cast<std::uintptr_t>(s));
  if (debugEnabled()) {
    debugLogInt64("mPrivateStringDelta1", offset);
    debugLogInt64("mySize", size);
    debugLogPointer("myData", data);
  }
  if (offset != kInlineStringDataOffset) return std::nullopt;
  const std::size_t count = data == nullptr || size < 0 ? 0 : static_cast<std::size_t>(size);
  return std::span(reinterpret_cast<std::uint8_t*>(data), count);
}

}  // namespace zel
