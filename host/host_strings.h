// Host strings: reference-counted bytes with an encoding. A string the stand-in builds keeps its
// bytes exactly 42 bytes behind its handle, where the plug-in's clearing function looks for them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sdk/host_types.h"

namespace zelhost::detail {

inline constexpr std::size_t kInlineBytesOffset = kInlineStringDataOffset;

struct StringHeader {
  std::uint32_t magic;
  std::uint32_t encoding;
  std::int32_t references;  // guarded by the string registry
  bool detached;
  std::size_t length;
  char* bytes;  // zero-terminated, with a few zero bytes of slack

  std::string_view view() const { return {bytes, length}; }
};
static_assert(sizeof(StringHeader) <= kInlineBytesOffset);

REALstring createString(std::string_view bytes, std::uint32_t encoding, bool detached = false);
// The header of a live string; null (and a protocol error naming `context`) for anything else.
StringHeader* liveString(REALstring s, const char* context);
void retainString(REALstring s, const char* context);
void releaseString(REALstring s, const char* context);
int liveStringCount();
// PluginGetStringData records handed out and not yet disposed.
int outstandingStringDataCount();

}  // namespace zelhost::detail
