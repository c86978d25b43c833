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

}  // namespace zeltest
