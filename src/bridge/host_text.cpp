#include "bridge/host_text.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

#include "bridge/unicode_units.h"
#include "framework/debug_log.h"
#include "framework/host_api.h"

namespace zel {
namespace {

// One zero unit of any width: what every empty view points at.
alignas(std::uint32_t) constexpr std::uint32_t kEmptyText[1] = {0};

constexpr std::array<std::size_t, 4> kUnitWidth = {1, 1, 2, 4};

std::atomic<bool> rebuildFailureLogged{false};

std::uint32_t unitAt(const std::uint8_t* at, std::size_t width) noexcept {
  if (width == 1) return *at;
  if (width == 2) {
    std::uint16_t unit;
    std::memcpy(&unit, at, sizeof unit);
    return unit;
  }
  std::uint32_t unit;
  std::memcpy(&unit, at, sizeof unit);
  return unit;
}

void swapUnits(const std::uint8_t* from, std::uint8_t* to, std::size_t count,
               std::size_t width) noexcept {
  for (std::size_t i = 0; i < count * width; i += width) {
    for (std::size_t b = 0; b < width; ++b) to[i + b] = from[i + width - 1 - b];
  }
}

}  // namespace

void debugLogString(const char* label, REALstring s) noexcept {
  if (!debugEnabled()) return;
  HostText text(s);
  debugLog("%s%s %p: %s", kDebugPrefix, label, static_cast<const void*>(s), text.utf8().data());
}

HostText::HostText(REALstring source) noexcept {
  reset();
  if (source == nullptr) return;
  source_ = source;
  host::REALLockString(source);
  encoding_ = host::REALGetStringEncoding(source);
  if (isWideUnicode(encoding_)) {
    state_ = State::NeedsConversion;
    return;
  }
  state_ = State::Unclassified;
  if (encoding_ == encoding::kUTF8 || encoding_ == encoding::kASCII) {
    RBInteger count = 0;
    const char* bytes = host::StringGetCString(source, &count);
    setBorrowed(kUtf8, bytes, count);
    if (encoding_ == encoding::kASCII) setBorrowed(kAscii, bytes, count);
  } else if (encoding_ == encoding::kNone) {
    applyNoEncodingRule();
  }
}

void HostText::reset() noexcept {
  guard1_ = kGuard;
  source_ = nullptr;
  replacedSource_ = nullptr;
  for (View& v : views_) {
    v = View{};
    v.data = kEmptyText;
  }
  failed_ = false;
  encoding_ = encoding::kASCII;
  state_ = State::PureAscii;
  guard2_ = kGuard;
}

void HostText::close() noexcept {
  if (debugEnabled()) {
    if (guard1_ != kGuard) debugLogUInt64("Check1 in rbText invalid", guard1_);
    if (guard2_ != kGuard) debugLogLabel("Check2 in rbText invalid");
  }
  if (source_ != nullptr) host::REALUnlockString(source_);
  if (replacedSource_ != nullptr) host::REALUnlockString(replacedSource_);
  for (View& v : views_) {
    if (v.lentHeld) host::PluginDisposeStringData(&v.lent);
  }
  for (View& v : views_) v.block.reset();
  reset();
}

const void* HostText::view(ViewKind kind) noexcept {
  View& v = views_[kind];
  if (v.length < 0) compute(kind);
  if (!v.finished) {
    finish(kind);
    v.finished = true;
  }
  return v.data;
}

std::span<const std::uint8_t> HostText::classify() noexcept {
  const HostStringBytes borrowed(source_);
  const auto bytes = borrowed.bytes();
  if (!isAscii(bytes)) {
    state_ = State::NeedsConversion;
    return bytes;
  }
  state_ = State::PureAscii;
  for (const ViewKind kind : {kAscii, kUtf8}) {
    if (views_[kind].length < 0) {
      setBorrowed(kind, bytes.data(), static_cast<RBInteger>(bytes.size()));
    }
  }
  return bytes;  // still ours: the record holds the source
}

void HostText::applyNoEncodingRule() noexcept {
  const auto bytes = classify();
  if (state_ == State::PureAscii) return;
  const platform::ZeroedBlock copy(platform::allocateZeroed(bytes.size() + 4));
  if (copy == nullptr) {
    if (debugEnabled()) debugLogLabel("Out of Memory.");
    return;
  }
  std::memcpy(copy.get(), bytes.data(), bytes.size());
  REALstring rebuilt = REALBuildUnicodeString(copy.get(), static_cast<RBInteger>(bytes.size()),
                                              encoding::kWindowsLatin1);
  if (rebuilt == nullptr) {
    if (debugEnabled() && !rebuildFailureLogged.exchange(true)) {
      debugLogLabel("REALBuildUnicodeString failed");
    }
    return;
  }
  replacedSource_ = std::exchange(source_, rebuilt);
  encoding_ = host::REALGetStringEncoding(source_);
}

void HostText::compute(ViewKind kind) noexcept {
  if (source_ == nullptr) return setEmpty(kind);
  if (state_ == State::Unclassified) classify();
  if (views_[kind].length >= 0) return;  // classification made it
  const bool utf8Source = encoding_ == encoding::kASCII || encoding_ == encoding::kUTF8;
  switch (kind) {
    case kAscii:
    case kUtf8:
      if (!lend(kind, kind == kAscii ? encoding::kASCII : encoding::kUTF8)) setEmpty(kind);
      return;
    case kUtf16:
      if (state_ == State::PureAscii) return widen(kind);
      if (utf8Source) {
        if (debugEnabled()) debugLogLabel("Try UTF8 to UTF16 conversion...");
        return decodeUtf8View(kind);
      }
      if (!lend(kind, encoding::kUTF16)) setEmpty(kind);
      return;
    case kUtf32:
      if (state_ == State::PureAscii) return widen(kind);
      if (utf8Source) {
        if (debugEnabled()) debugLogLabel("Try UTF8 to UTF32 conversion...");
        return decodeUtf8View(kind);
      }
      if (lend(kind, encoding::kUTF32)) return;
      if (debugEnabled()) debugLogLabel("Try UTF16 to UTF32 conversion...");
      return combineUtf16View();
    case kViewCount:
      break;
  }
}

bool HostText::lend(ViewKind kind, std::uint32_t wanted) noexcept {
  View& v = views_[kind];
  REALstringData lent{};
  failed_ = !host::PluginGetStringData(source_, wanted, &lent);
  if (failed_) {
    // The UTF-32 view has a fallback and says so itself.
    if (kind != kUtf32 && debugEnabled()) debugLogLabel("REALGetStringData failed.");
    return false;
  }
  v.lent = lent;
  v.lentHeld = true;
  setBorrowed(kind, lent.data, static_cast<RBInteger>(lent.length / kUnitWidth[kind]));
  return true;
}

void HostText::setBorrowed(ViewKind kind, const void* data, RBInteger length) noexcept {
  if (data == nullptr || length <= 0) return setEmpty(kind);
  views_[kind].data = data;
  views_[kind].length = length;
}

void HostText::setEmpty(ViewKind kind) noexcept {
  views_[kind].data = kEmptyText;
  views_[kind].length = 0;
}

void* HostText::allocate(ViewKind kind, std::size_t bytes) noexcept {
  void* block = platform::allocateZeroed(bytes);
  if (block == nullptr) {
    if (debugEnabled()) debugLogLabel("Out of memory");
    setEmpty(kind);
  }
  return block;
}

void HostText::widen(ViewKind kind) noexcept {
  const View& ascii = views_[kAscii];
  const auto count = static_cast<std::size_t>(ascii.length);
  const auto* bytes = static_cast<const std::uint8_t*>(ascii.data);
  if (count == 0) return setEmpty(kind);
  void* block = allocate(kind, count * kUnitWidth[kind] + 4);
  if (block == nullptr) return;
  views_[kind].block.reset(block);
  if (kind == kUtf16) {
    std::copy(bytes, bytes + count, static_cast<char16_t*>(block));
  } else {
    std::copy(bytes, bytes + count, static_cast<char32_t*>(block));
  }
  views_[kind].data = block;
  views_[kind].length = static_cast<RBInteger>(count);
}

void HostText::decodeUtf8View(ViewKind kind) noexcept {
  const std::string_view text = utf8();
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const std::size_t count = text.size();
  const std::size_t blockBytes = kind == kUtf16 ? (count + 8) * 2 : (count + 4) * 4;
  void* block = allocate(kind, blockBytes);
  if (block == nullptr) return;
  views_[kind].block.reset(block);
  const std::size_t units = kind == kUtf16
                                ? Utf8ToUtf16(bytes, count, static_cast<char16_t*>(block))
                                : Utf8ToUtf32(bytes, count, static_cast<char32_t*>(block));
  views_[kind].data = block;
  views_[kind].length = static_cast<RBInteger>(units);
}

void HostText::combineUtf16View() noexcept {
  const std::u16string_view units = utf16();
  void* block = allocate(kUtf32, (units.size() + 4) * 4);
  if (block == nullptr) return;
  views_[kUtf32].block.reset(block);
  const std::size_t count = combineUtf16ToUtf32(units, static_cast<char32_t*>(block));
  views_[kUtf32].data = block;
  views_[kUtf32].length = static_cast<RBInteger>(count);
}

void HostText::finish(ViewKind kind) noexcept {
  View& v = views_[kind];
  if (v.length <= 0) return setEmpty(kind);
  const std::size_t width = kUnitWidth[kind];
  const auto count = static_cast<std::size_t>(v.length);
  const auto* bytes = static_cast<const std::uint8_t*>(v.data);

  const bool terminated = unitAt(bytes + count * width, width) == 0;
  const bool aligned = reinterpret_cast<std::uintptr_t>(bytes) % width == 0;
  if (!terminated || !aligned) {
    if (!terminated && debugEnabled()) debugLogLabel("String is not zero terminated. Fixed.");
    void* copy = allocate(kind, count * width + 4);
    if (copy == nullptr) return;
    std::memcpy(copy, bytes, count * width);
    v.block.reset(copy);
    v.data = bytes = static_cast<const std::uint8_t*>(copy);
  }
  if (width == 1) return;

  const std::uint32_t swappedMark = width == 2 ? 0xFFFE : 0xFFFE0000;
  if (unitAt(bytes, width) == swappedMark) {
    if (debugEnabled()) debugLogLabel("String is Little Endian. Swap.");
    auto* swapped = static_cast<std::uint8_t*>(allocate(kind, count * width + 4));
    if (swapped == nullptr) return;
    swapUnits(bytes, swapped, count, width);
    v.block.reset(swapped);  // frees what `bytes` may have pointed into, after the copy
    v.data = bytes = swapped;
  }

  for (const std::uint32_t mark : {0xFEFFu, 0xFFFEu}) {
    if (v.length > 0 && unitAt(bytes, width) == mark) {
      v.data = bytes += width;
      --v.length;
    }
  }
}

}  // namespace zel
