// Inputs shared by the benchmark suites: deterministic, so runs compare.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace zeltest {

inline constexpr std::size_t kLarge = 1 << 20;  // 1 MiB
inline constexpr std::size_t kShort = 32;

// Printable ASCII prose with spaces and line breaks.
inline std::string asciiText(std::size_t bytes) {
  static constexpr std::string_view kWords[] = {"the ",  "quick ", "brown ", "fox ", "jumps ",
                                                "over ", "lazy ",  "dog, ",  "and ", "runs.\n"};
  std::string out;
  out.reserve(bytes + 8);
  std::mt19937 random(42);
  while (out.size() < bytes) out += kWords[random() % std::size(kWords)];
  out.resize(bytes);
  return out;
}

// Every byte value, uniformly.
inline std::string binaryData(std::size_t bytes) {
  std::string out(bytes, '\0');
  std::mt19937 random(7);
  for (auto& c : out) c = static_cast<char>(random());
  return out;
}

// UTF-8 text mixing ASCII, Latin, Greek, Vietnamese, Hangul and an emoji.
inline std::string utf8Text(std::size_t bytes) {
  static constexpr std::string_view kPieces[] = {"plain words ", "café ",   "naïve ", "Ελληνικά ",
                                                 "Tiếng Việt ",  "한국어 ", "😀 ",     "über\n"};
  std::string out;
  out.reserve(bytes + 16);
  std::mt19937 random(3);
  while (out.size() < bytes) out += kPieces[random() % std::size(kPieces)];
  while (out.size() > bytes && (static_cast<unsigned char>(out.back()) & 0xC0) == 0x80)
    out.pop_back();
  if (out.size() > bytes) out.pop_back();
  return out;
}

// 64 bytes: the length of a typical short argument.
inline constexpr std::size_t kSmall = 64;

namespace detail {
// Random picks from `pieces` until `bytes` is reached, cut back to a whole character.
template <std::size_t N>
std::string textOf(const std::string_view (&pieces)[N], std::size_t bytes, unsigned seed) {
  std::string out;
  out.reserve(bytes + 16);
  std::mt19937 random(seed);
  while (out.size() < bytes) out += pieces[random() % N];
  out.resize(bytes);
  while (!out.empty() && (static_cast<unsigned char>(out.back()) & 0xC0) == 0x80) out.pop_back();
  if (!out.empty() && static_cast<unsigned char>(out.back()) >= 0xC0) out.pop_back();
  return out;
}
}  // namespace detail

// Western European prose: about one character in ten is a two-byte accented letter.
inline std::string europeanText(std::size_t bytes) {
  static constexpr std::string_view kWords[] = {
      "les ",    "enfants ", "été ",  "über ",  "straße ", "mañana ", "and ",  "the ",
      "façade ", "garçon ",  "with ", "dans ",  "père ",   "große ",  "niño ", "für ",
      "a ",      "of ",      "to ",   "was ",   "it ",     "is ",     "on ",   "in ",
      "said.\n", "this ",    "but ",  "which ", "their ",  "could ",  "when ", "there "};
  return detail::textOf(kWords, bytes, 11);
}

// Chinese and Japanese text: three-byte characters with some ASCII punctuation and digits.
inline std::string cjkText(std::size_t bytes) {
  static constexpr std::string_view kPieces[] = {"中文", "日本語", "漢字", "テキスト", "東京",
                                                 "北京", "の",     "は",   "、",       "。",
                                                 " ",    "2026",   "年",   "月",       "\n"};
  return detail::textOf(kPieces, bytes, 5);
}

}  // namespace zeltest
