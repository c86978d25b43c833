#include "text/utf8.h"

#include "text/simd_lanes.h"
#include "text/simd_path.h"
#include "text/surrogates.h"
#include "text/utf8_blocks.h"
#include "text/utf8_check_avx2.h"
#include "text/utf8_check_neon.h"

namespace zel::text {
namespace {

// Flattened, so that each path's loop runs with its lanes inlined.
template <class Lanes>
struct Kernels {
  [[gnu::flatten]] static std::size_t asciiPrefix(const std::uint8_t* bytes,
                                                  std::size_t count) noexcept {
    return blocks::asciiPrefix<Lanes>(bytes, count);
  }
  [[gnu::flatten]] static std::size_t validPrefix(const std::uint8_t* bytes,
                                                  std::size_t count) noexcept {
    return blocks::validPrefix<Lanes>(bytes, count);
  }
  template <class Unit>
  [[gnu::flatten]] static Utf8DecodeResult decode(const std::uint8_t* bytes, std::size_t count,
                                                  Unit* out) noexcept {
    return blocks::decode<Lanes>(bytes, count, out);
  }
};

// Where a vector check runs fast, checking first pays: the `valid` bytes it found are decoded with
// no checks left to make.
template <class Lanes, class Unit>
Utf8DecodeResult decodeChecked(const std::uint8_t* bytes, std::size_t count, std::size_t valid,
                               Unit* out) noexcept {
  Utf8DecodeResult result;
  result.units = blocks::decodeWellFormed<Lanes>(bytes, valid, out);
  if (valid < count) result.badOffset = valid;
  return result;
}

#if defined(__x86_64__)
// The same loops compiled for AVX2, which the build does not assume: only reached after the
// processor was found to run it.
struct Avx2Kernels {
  [[gnu::target("avx2"), gnu::flatten]] static std::size_t asciiPrefix(const std::uint8_t* bytes,
                                                                       std::size_t count) noexcept {
    return blocks::asciiPrefix<lanes::Avx2>(bytes, count);
  }
  [[gnu::target("avx2"), gnu::flatten]] static std::size_t validPrefix(const std::uint8_t* bytes,
                                                                       std::size_t count) noexcept {
    return avx2_check::validPrefix(bytes, count);
  }
  template <class Unit>
  [[gnu::target("avx2"), gnu::flatten]] static Utf8DecodeResult decode(const std::uint8_t* bytes,
                                                                       std::size_t count,
                                                                       Unit* out) noexcept {
    return decodeChecked<lanes::Avx2>(bytes, count, avx2_check::validPrefix(bytes, count), out);
  }
};
#endif

#if defined(__aarch64__)
// NEON is always there: only the checking differs from the generic loops.
struct NeonKernels : Kernels<lanes::Neon> {
  [[gnu::flatten]] static std::size_t validPrefix(const std::uint8_t* bytes,
                                                  std::size_t count) noexcept {
    return neon_check::validPrefix(bytes, count);
  }
  template <class Unit>
  [[gnu::flatten]] static Utf8DecodeResult decode(const std::uint8_t* bytes, std::size_t count,
                                                  Unit* out) noexcept {
    return decodeChecked<lanes::Neon>(bytes, count, neon_check::validPrefix(bytes, count), out);
  }
};
#endif

template <class Operation>
decltype(auto) onActivePath(Operation operation) noexcept {
  switch (activeSimdPath()) {
#if defined(__x86_64__)
    case SimdPath::avx2:
      return operation(Avx2Kernels{});
    case SimdPath::sse2:
      return operation(Kernels<lanes::Sse2>{});
#elif defined(__aarch64__)
    case SimdPath::neon:
      return operation(NeonKernels{});
#endif
    default:
      return operation(Kernels<lanes::Portable>{});
  }
}

template <class Unit>
Utf8DecodeResult decodeOnActivePath(std::span<const std::uint8_t> bytes, Unit* out) noexcept {
  return onActivePath(
      [&](auto kernels) { return kernels.decode(bytes.data(), bytes.size(), out); });
}

}  // namespace

std::size_t asciiPrefixLength(std::span<const std::uint8_t> bytes) noexcept {
  return onActivePath(
      [&](auto kernels) { return kernels.asciiPrefix(bytes.data(), bytes.size()); });
}

std::size_t validUtf8Length(std::span<const std::uint8_t> bytes) noexcept {
  return onActivePath(
      [&](auto kernels) { return kernels.validPrefix(bytes.data(), bytes.size()); });
}

Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char16_t* out) noexcept {
  return decodeOnActivePath(bytes, out);
}

Utf8DecodeResult decodeUtf8(std::span<const std::uint8_t> bytes, char32_t* out) noexcept {
  return decodeOnActivePath(bytes, out);
}

void appendUtf8(char32_t codePoint, std::string& out) {
  constexpr char32_t kOneByteLimit = 0x80;
  constexpr char32_t kTwoByteLimit = 0x800;
  constexpr unsigned kPayloadBits = 6;
  constexpr char32_t kPayloadMask = 0x3F;
  constexpr char32_t kContinuation = 0x80;
  if (isSurrogate(codePoint) || codePoint > kLastCodePoint) codePoint = kReplacementCharacter;
  const auto byte = [](char32_t value) { return static_cast<char>(value); };
  const auto continuation = [&](unsigned shift) {
    return byte(kContinuation | ((codePoint >> shift) & kPayloadMask));
  };
  if (codePoint < kOneByteLimit) {
    out += byte(codePoint);
  } else if (codePoint < kTwoByteLimit) {
    out += byte(0xC0 | (codePoint >> kPayloadBits));
    out += continuation(0);
  } else if (codePoint < kFirstSupplementary) {
    out += byte(0xE0 | (codePoint >> (2 * kPayloadBits)));
    out += continuation(kPayloadBits);
    out += continuation(0);
  } else {
    out += byte(0xF0 | (codePoint >> (3 * kPayloadBits)));
    out += continuation(2 * kPayloadBits);
    out += continuation(kPayloadBits);
    out += continuation(0);
  }
}

std::string encodeUtf8(std::u32string_view codePoints) {
  std::string out;
  out.reserve(codePoints.size());
  for (const char32_t codePoint : codePoints) appendUtf8(codePoint, out);
  return out;
}

std::string encodeUtf8(std::u16string_view units) {
  std::string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
      appendUtf8(combineSurrogates(unit, units[++i]), out);
    } else {
      appendUtf8(unit, out);
    }
  }
  return out;
}

}  // namespace zel::text
