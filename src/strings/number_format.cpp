#include "strings/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>
#include <string_view>

#include "base/out_of_memory_error.h"

namespace zel::strings {
namespace {

constexpr std::size_t kMaxTextLength = 499;
// The zero-filled work buffer that a failed allocation reports.
constexpr std::size_t kWorkBufferBytes = kMaxTextLength + 1;
constexpr int kFixedPrecision = 99;
constexpr std::size_t kKeptSignificantCharacters = 15;
constexpr std::size_t kShortestTrimmedText = 3;
// A double's exact decimal expansion has fewer significant digits than this, so any larger
// precision only appends zeros beyond the 499 characters kept.
constexpr std::int64_t kMaxScientificDigits = 800;

void trimDoubledTrailingZeros(std::string& text) {
  while (text.size() > kShortestTrimmedText && text.ends_with("00")) text.pop_back();
}

// Keeps 15 characters counted from the first non-zero fraction digit, less one for every
// character before the point that is not '0' (a minus sign included). Fewer than 15 such
// characters means the kept text always reaches past the point.
void cutToSignificantCharacters(std::string& text) {
  const std::size_t point = text.find('.');
  if (point == std::string::npos) return;
  const auto integerPart = std::string_view(text).substr(0, point);
  const auto counted = static_cast<std::size_t>(
      std::count_if(integerPart.begin(), integerPart.end(), [](char c) { return c != '0'; }));
  if (counted >= kKeptSignificantCharacters) {
    text.resize(point);
    return;
  }
  const std::size_t firstSignificant =
      std::min(text.find_first_not_of('0', point + 1), text.size());
  text.resize(std::min(text.size(), firstSignificant - counted + kKeptSignificantCharacters));
}

void trimRepeatedEnding(std::string& text) {
  while (text.size() > kShortestTrimmedText && text.back() == text[text.size() - 2])
    text.pop_back();
}

template <typename... Format>
std::string printCapped(double value, Format... format) {
  std::array<char, 1024> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
  const auto length = static_cast<std::size_t>(result.ptr - buffer.data());
  try {
    return std::string(buffer.data(), std::min(length, kMaxTextLength));
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError::forBytes(kWorkBufferBytes);
  }
}

}  // namespace

std::string formatTrimmedFixed(double value) {
  std::string text = printCapped(value, std::chars_format::fixed, kFixedPrecision);
  trimDoubledTrailingZeros(text);
  cutToSignificantCharacters(text);
  trimRepeatedEnding(text);
  return text;
}

std::string formatScientific(double value, std::int64_t digits) {
  const auto precision =
      static_cast<int>(std::clamp<std::int64_t>(digits, 0, kMaxScientificDigits));
  return printCapped(value, std::chars_format::scientific, precision);
}

}  // namespace zel::strings
