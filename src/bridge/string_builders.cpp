#include "bridge/string_builders.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "bridge/unicode_units.h"
#include "framework/exceptions.h"
#include "framework/host_api.h"
#include "framework/plugin_state.h"
#include "framework/tagged_string.h"
#include "platform/platform.h"

namespace zel {
namespace {

// The host takes a 32-bit count. Compared in 64 bits, since a 32-bit RBInteger never reaches it.
constexpr std::int64_t kMaxBuildCount = std::int64_t{1} << 31;
// Old hosts' UTF-32 path converts short texts without touching the allocator.
constexpr std::size_t kLocalCodePoints = 200;

bool hostTakesUtf32() noexcept {
  return pluginState().hostVersion >= kVersionWithModules;
}

bool isSingleByteEncoding(std::uint32_t value) noexcept {
  return value == encoding::kMacRoman || value == encoding::kISOLatin1 ||
         value == encoding::kWindowsLatin1 || value == encoding::kNone;
}

REALstring buildTagged(const void* data, RBInteger byteCount, std::uint32_t encoding) noexcept {
  return buildTaggedString(static_cast<const char*>(data), static_cast<int>(byteCount), encoding);
}

// Takes over `intermediate` and returns it converted to UTF-8.
REALstring toUtf8(REALstring intermediate) noexcept {
  if (intermediate == nullptr) return nullptr;
  REALstring utf8 = host::REALConvertString(intermediate, encoding::kUTF8);
  host::REALUnlockString(intermediate);
  return utf8;
}

}  // namespace

REALstring CString2RB(const char* text, std::uint32_t encoding) noexcept {
  if (debugEnabled() && encoding == encoding::kUTF16) {
    debugLogLabel("Error: kREALTextEncodingUTF16 not useful for CString2RB!");
  } else if (debugEnabled() && encoding == encoding::kUTF32) {
    debugLogLabel("Error: kREALTextEncodingUTF32 not useful for CString2RB!");
  }
  if (text == nullptr) return nullptr;
  const std::string_view view(text);
  if (debugEnabled() && encoding == encoding::kASCII &&
      !isAscii({reinterpret_cast<const std::uint8_t*>(view.data()), view.size()})) {
    debugLogText("Error: text is not ascii", text);
  }
  return REALBuildUnicodeString(text, static_cast<RBInteger>(view.size()), encoding);
}

REALstring REALBuildUnicodeString(const void* data, RBInteger byteCount,
                                  std::uint32_t encoding) noexcept {
  return guarded(OnFailure::raise, [&]() -> REALstring {
    if (data == nullptr || byteCount <= 0) return nullptr;
    if (std::int64_t{byteCount} >= kMaxBuildCount) {
      if (debugEnabled()) debugLogLabel("Count too big for REALBuildUnicodeString.");
      return nullptr;
    }
    std::uint32_t tag = encoding;
    if (encoding == encoding::kUTF16) return REALBuildUnicodeStringUTF16(data, byteCount);
    if (encoding == encoding::kUTF32) return REALBuildUnicodeStringUTF32(data, byteCount);
    if (isSingleByteEncoding(encoding)) {
      if (isAscii({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(byteCount)})) {
        tag = encoding::kASCII;
      }
    } else if (encoding != encoding::kASCII && encoding != encoding::kUTF8 && debugEnabled()) {
      debugLogUInt32("Unknown encoding in REALBuildUnicodeString", encoding);
    }
    return buildTagged(data, byteCount, tag);
  });
}

REALstring REALBuildUnicodeStringUTF16(const void* data, RBInteger byteCount) noexcept {
  if (pluginState().hostVersion >= kVersionWithEncodedBuild) {
    return toUtf8(buildTagged(data, byteCount, encoding::kUTF16));
  }
  REALstring built =
      host::REALBuildString(static_cast<const char*>(data), static_cast<int>(byteCount));
  if (built == nullptr) {
    if (debugEnabled()) debugLogLabel("Out of memory in REALBuildUnicodeStringUTF16.");
    return nullptr;
  }
  host::REALSetStringEncoding(built, encoding::kUTF16);
  return toUtf8(built);
}

REALstring REALBuildUnicodeStringUTF32(const void* data, RBInteger byteCount) noexcept {
  const RBInteger wholeCodePoints = data == nullptr ? 0 : std::max<RBInteger>(byteCount, 0) / 4;
  if (hostTakesUtf32()) {
    return toUtf8(buildTagged(data, wholeCodePoints * 4, encoding::kUTF32));
  }
  const auto codePoints = static_cast<std::size_t>(wholeCodePoints);
  const std::span bytes(static_cast<const std::uint8_t*>(data), codePoints * 4);
  std::array<char16_t, 2 * kLocalCodePoints + 1> local{};
  platform::ZeroedBlock heap;
  char16_t* units = local.data();
  if (codePoints >= kLocalCodePoints) {
    heap.reset(platform::allocateZeroed((2 * codePoints + 2) * sizeof(char16_t)));
    if (heap == nullptr) {
      if (debugEnabled()) debugLogLabel("Out of memory in REALBuildUnicodeStringUTF32.");
      return nullptr;
    }
    units = static_cast<char16_t*>(heap.get());
  }
  const std::size_t unitCount = utf32BytesToUtf16(bytes, units);
  return REALBuildUnicodeStringUTF16(units, static_cast<RBInteger>(unitCount * 2));
}

REALstring REALBuildUnicodeStringUTF16Terminated(const char16_t* units) noexcept {
  if (units == nullptr) return nullptr;
  const std::size_t count = std::u16string_view(units).size();
  return REALBuildUnicodeString(units, static_cast<RBInteger>(count * 2), encoding::kUTF16);
}

}  // namespace zel
