#include "bridge/utf8_decoder.h"

#include "framework/debug_log.h"

namespace zel {
namespace {

template <class Unit>
std::size_t decodeLogged(const std::uint8_t* bytes, std::size_t count, Unit* out) noexcept {
  const auto result = decodeUtf8(std::span(bytes, count), out);
  if (result.badOffset && debugEnabled()) {
    debugLogInt64("Illegal UTF-8 sequence!", static_cast<std::int64_t>(*result.badOffset));
  }
  return result.units;
}

}  // namespace

std::size_t Utf8ToUtf16(const std::uint8_t* bytes, std::size_t count, char16_t* out) noexcept {
  return decodeLogged(bytes, count, out);
}
std::size_t Utf8ToUtf32(const std::uint8_t* bytes, std::size_t count, char32_t* out) noexcept {
  return decodeLogged(bytes, count, out);
}

}  // namespace zel
