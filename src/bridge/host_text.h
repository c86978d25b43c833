// The host string and memory bridge. HostText wraps one text argument for one call and hands out
// its ASCII, UTF-8, UTF-16 and UTF-32 views, each computed on first use by the cheapest route and
// zero-terminated; they stay valid until the record is closed.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "bridge/host_string_bytes.h"
#include "bridge/memory_block.h"
#include "bridge/string_builders.h"
#include "bridge/utf8_decoder.h"
#include "platform/platform.h"
#include "sdk/host_types.h"

namespace zel {

// Logs "label handle: text" with the string's text as UTF-8 when the debug log is on.
void debugLogString(const char* label, REALstring s) noexcept;

// UTF-16 and UTF-32 in any byte order: text whose 8-bit views always need the host's conversion.
constexpr bool isWideUnicode(std::uint32_t value) noexcept {
  return value == encoding::kUTF16 ||
         (value >= encoding::kUTF32 && value <= encoding::kUTF32LE && (value & 0x3FFFFFF) == 0x100);
}

class HostText {
 public:
  explicit HostText(REALstring source) noexcept;
  ~HostText() { close(); }
  HostText(const HostText&) = delete;
  HostText& operator=(const HostText&) = delete;

  // Each view is followed by a zero unit, so its pointer can go where a terminated text is wanted.
  const char* AsciiText() noexcept { return static_cast<const char*>(view(kAscii)); }
  const char* Utf8Text() noexcept { return static_cast<const char*>(view(kUtf8)); }
  // Null instead of the empty text.
  const char* Utf8TextOrNull() noexcept { return Utf8Length() == 0 ? nullptr : Utf8Text(); }
  const char16_t* Utf16Text() noexcept { return static_cast<const char16_t*>(view(kUtf16)); }
  const char32_t* Utf32Text() noexcept { return static_cast<const char32_t*>(view(kUtf32)); }
  RBInteger AsciiLength() noexcept { return length(kAscii); }
  RBInteger Utf8Length() noexcept { return length(kUtf8); }
  RBInteger Utf16Length() noexcept { return length(kUtf16); }
  RBInteger Utf32Length() noexcept { return length(kUtf32); }

  // The same views, counted: what the kernels take.
  std::string_view ascii() noexcept { return {AsciiText(), size(kAscii)}; }
  std::string_view utf8() noexcept { return {Utf8Text(), size(kUtf8)}; }
  std::u16string_view utf16() noexcept { return {Utf16Text(), size(kUtf16)}; }
  std::u32string_view utf32() noexcept { return {Utf32Text(), size(kUtf32)}; }

  // The argument, or its Windows Latin 1 rebuild when it came without encoding.
  REALstring source() const noexcept { return source_; }
  std::uint32_t encoding() const noexcept { return encoding_; }
  bool conversionFailed() const noexcept { return failed_; }

  // Releases everything and leaves an empty record; closing twice is harmless.
  void close() noexcept;

 private:
  friend struct HostTextProbe;  // tests reach the guards through it

  // Reads "ZELT" from its high byte.
  static constexpr std::uint64_t kGuard = 0x5A454C54;

  enum class State : std::uint8_t { PureAscii = 1, Unclassified = 2, NeedsConversion = 3 };
  enum ViewKind : std::uint8_t { kAscii, kUtf8, kUtf16, kUtf32, kViewCount };

  struct View {
    const void* data = nullptr;
    RBInteger length = -1;  // units without the terminator; -1 until computed
    bool finished = false;  // the clean-ups have run
    platform::ZeroedBlock block;
    REALstringData lent{};
    bool lentHeld = false;
  };

  void reset() noexcept;
  const void* view(ViewKind kind) noexcept;
  RBInteger length(ViewKind kind) noexcept {
    view(kind);
    return views_[kind].length;
  }
  std::size_t size(ViewKind kind) noexcept { return static_cast<std::size_t>(length(kind)); }

  std::span<const std::uint8_t> classify() noexcept;
  void applyNoEncodingRule() noexcept;
  void compute(ViewKind kind) noexcept;
  bool lend(ViewKind kind, std::uint32_t wanted) noexcept;
  void setBorrowed(ViewKind kind, const void* data, RBInteger length) noexcept;
  void setEmpty(ViewKind kind) noexcept;
  void* allocate(ViewKind kind, std::size_t bytes) noexcept;
  void widen(ViewKind kind) noexcept;
  void decodeUtf8View(ViewKind kind) noexcept;
  void combineUtf16View() noexcept;
  void finish(ViewKind kind) noexcept;

  std::uint64_t guard1_ = kGuard;
  REALstring source_ = nullptr;
  REALstring replacedSource_ = nullptr;
  std::array<View, kViewCount> views_{};
  bool failed_ = false;
  std::uint32_t encoding_ = encoding::kASCII;
  State state_ = State::PureAscii;
  std::uint64_t guard2_ = kGuard;
};

}  // namespace zel
