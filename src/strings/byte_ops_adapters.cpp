#include "strings/byte_ops_adapters.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "bridge/adapter_support.h"
#include "framework/host_api.h"
#include "strings/byte_ops.h"

namespace zel::adapters {
namespace {

using strings::ByteRange;

RBInteger positionInRanges(OnFailure policy, REALstring target,
                           std::initializer_list<ByteRange> ranges) noexcept {
  return readBytes(
      policy,
      [&](std::string_view bytes) -> RBInteger {
        return strings::positionOfByteInRanges(bytes, {ranges.begin(), ranges.size()});
      },
      target);
}

RBInteger positionInRangesOrSet(OnFailure policy, REALstring target, REALstring find,
                                std::initializer_list<ByteRange> ranges) noexcept {
  return readBytes(
      policy,
      [&](std::string_view bytes, std::string_view set) -> RBInteger {
        return strings::positionOfSignedByteInRangesOrSet(bytes, set,
                                                          {ranges.begin(), ranges.size()});
      },
      target, find);
}

// The XOR masks start reading the mask at `offset`.
REALstring xorFromOffset(OnFailure policy,
                         std::string (*kernel)(std::string_view, std::string_view, std::int64_t),
                         REALstring data, REALstring mask, RBInteger offset) noexcept {
  return bytesToString(
      policy, encoding::kNone,
      [&](std::string_view bytes, std::string_view maskBytes) {
        return kernel(bytes, maskBytes, offset);
      },
      data, mask);
}

constexpr std::uint32_t encodingOf(strings::UnicodeForm form) {
  switch (form) {
    case strings::UnicodeForm::utf8:
      return encoding::kUTF8;
    case strings::UnicodeForm::utf16:
      return encoding::kUTF16;
    case strings::UnicodeForm::utf32:
      return encoding::kUTF32;
  }
  return encoding::kNone;
}

REALstring convertWithHost(OnFailure policy, REALstring s, std::uint32_t target) noexcept {
  if (s == nullptr) return nullptr;
  return guarded(policy, [&] { return host::REALConvertString(s, target); });
}

}  // namespace

// An empty mask (nil included) has nothing to apply, so a nil argument gives nil.
REALstring StringANDZEL(REALstring a, REALstring b) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kNone, &strings::maskAnd, a, b);
}

REALstring StringORZEL(REALstring a, REALstring b) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kNone, &strings::maskOr, a, b);
}

REALstring StringXORZEL(REALstring data, REALstring xorMask, RBInteger maskOffset) noexcept {
  return xorFromOffset(OnFailure::emptyIfOutOfMemory, &strings::maskXor, data, xorMask, maskOffset);
}

REALstring StringXOR2ZEL(REALstring data, REALstring xorMask, RBInteger maskOffset) noexcept {
  return xorFromOffset(OnFailure::emptyIfOutOfMemory, &strings::maskXorWithPosition, data, xorMask,
                       maskOffset);
}

REALstring ConcatBinaryStringsZEL_6Strings(REALstring a, REALstring b, REALstring c, REALstring d,
                                           REALstring e, REALstring f) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kNone,
      [](auto... parts) { return strings::concatBytes({parts...}); }, a, b, c, d, e, f);
}

REALstring ConcatBinaryStringsZEL_5Strings(REALstring a, REALstring b, REALstring c, REALstring d,
                                           REALstring e) noexcept {
  return ConcatBinaryStringsZEL_6Strings(a, b, c, d, e, nullptr);
}

REALstring ConcatBinaryStringsZEL_4Strings(REALstring a, REALstring b, REALstring c,
                                           REALstring d) noexcept {
  return ConcatBinaryStringsZEL_6Strings(a, b, c, d, nullptr, nullptr);
}

REALstring ConcatBinaryStringsZEL_3Strings(REALstring a, REALstring b, REALstring c) noexcept {
  return ConcatBinaryStringsZEL_6Strings(a, b, c, nullptr, nullptr, nullptr);
}

REALstring ConcatBinaryStringsZEL_2Strings(REALstring a, REALstring b) noexcept {
  return ConcatBinaryStringsZEL_6Strings(a, b, nullptr, nullptr, nullptr, nullptr);
}

RBInteger InStrBytesZEL(REALstring target, REALstring find) noexcept {
  return readBytes(OnFailure::emptyIfOutOfMemory, &strings::positionOfAnyByte, target, find);
}

RBInteger InStrByteRangeZEL_1Range(REALstring target, RBInteger start, RBInteger end) noexcept {
  return positionInRanges(OnFailure::emptyIfOutOfMemory, target, {{start, end}});
}

RBInteger InStrByteRangeZEL_2Ranges(REALstring target, RBInteger start, RBInteger end,
                                    RBInteger start2, RBInteger end2) noexcept {
  return positionInRanges(OnFailure::emptyIfOutOfMemory, target, {{start, end}, {start2, end2}});
}

RBInteger InStrByteRangeZEL_3Ranges(REALstring target, RBInteger start, RBInteger end,
                                    RBInteger start2, RBInteger end2, RBInteger start3,
                                    RBInteger end3) noexcept {
  return positionInRanges(OnFailure::emptyIfOutOfMemory, target,
                          {{start, end}, {start2, end2}, {start3, end3}});
}

RBInteger InStrByteRangeZEL_Find1Range(REALstring target, REALstring find, RBInteger start,
                                       RBInteger end) noexcept {
  return positionInRangesOrSet(OnFailure::emptyIfOutOfMemory, target, find, {{start, end}});
}

RBInteger InStrByteRangeZEL_Find2Ranges(REALstring target, REALstring find, RBInteger start,
                                        RBInteger end, RBInteger start2, RBInteger end2) noexcept {
  return positionInRangesOrSet(OnFailure::emptyIfOutOfMemory, target, find,
                               {{start, end}, {start2, end2}});
}

RBInteger InStrByteRangeZEL_Find3Ranges(REALstring target, REALstring find, RBInteger start,
                                        RBInteger end, RBInteger start2, RBInteger end2,
                                        RBInteger start3, RBInteger end3) noexcept {
  return positionInRangesOrSet(OnFailure::emptyIfOutOfMemory, target, find,
                               {{start, end}, {start2, end2}, {start3, end3}});
}

RBInteger StrCompBytesZEL(REALstring a, REALstring b) noexcept {
  if (a == nullptr) return -1;
  if (b == nullptr) return 1;
  return readBytes(OnFailure::emptyIfOutOfMemory, &strings::compareBytesZeroPadded, a, b);
}

REALstring CreateStringZEL(RBInteger length, REALstring content) noexcept {
  return guarded(OnFailure::raise, [&] {
    const HostStringBytes unit(content);
    return buildString(strings::repeatToLength(length, unit.view()),
                       content == nullptr ? encoding::kNone : host::REALGetStringEncoding(content));
  });
}

RBBoolean ClearStringContentZEL(REALstring s) noexcept {
  if (s == nullptr) return false;
  return guarded(OnFailure::raise, [&]() -> RBBoolean {
    const auto storage = inlineStorage(s);
    if (storage) strings::wipeBytes(*storage);
    return storage.has_value();
  });
}

REALstring RandomBytesStringZEL(RBInteger length, RBBoolean ascii) noexcept {
  return guarded(OnFailure::emptyIfOutOfMemory, [&] {
    return buildString(strings::randomBytes(length, ascii != 0),
                       ascii != 0 ? encoding::kASCII : encoding::kNone);
  });
}

RBBoolean IsASCIIStringZEL(REALstring s) noexcept {
  if (s == nullptr) return true;
  return readBytes(
      OnFailure::emptyIfOutOfMemory,
      [](std::string_view bytes) -> RBBoolean { return strings::isAscii(bytes); }, s);
}

RBBoolean IsASCIIStringZEL_Mode(REALstring s, RBInteger mode) noexcept {
  if (s == nullptr) return true;
  return readBytes(
      OnFailure::emptyIfOutOfMemory,
      [&](std::string_view bytes) -> RBBoolean { return strings::isAscii(bytes, mode); }, s);
}

REALstring ReplaceNonPrintableCharactersZEL(REALstring s, RBInteger replaceValue) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kASCII,
      [&](std::string_view bytes) { return strings::replaceNonPrintable(bytes, replaceValue); }, s);
}

RBInteger DetectUnicodeMarkersZEL(REALstring s) noexcept {
  return readBytes(OnFailure::emptyIfOutOfMemory, &strings::detectUnicodeMarker, s);
}

REALstring GetUnicodeMarkersZEL(RBInteger kind) noexcept {
  return guarded(OnFailure::emptyIfOutOfMemory, [&]() -> REALstring {
    const auto marker = strings::unicodeMarker(kind);
    return marker ? buildString(marker->bytes, encodingOf(marker->form)) : nullptr;
  });
}

REALstring UnicodeStringZEL(REALstring s) noexcept {
  return convertWithHost(OnFailure::raise, s, encoding::kUTF16);
}

REALstring NativeStringZEL(REALstring s) noexcept {
  return convertWithHost(OnFailure::raise, s, encoding::kUTF8);
}

}  // namespace zel::adapters
