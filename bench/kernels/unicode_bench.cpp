// Composition, decomposition and accent removal over 1 MiB of mixed Latin, Greek, Vietnamese
// and Hangul text.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "bench_inputs.h"
#include "strings/accent_map.h"
#include "strings/unicode_composition.h"

namespace {

std::u16string utf16Of(const std::string& utf8) {
  std::u16string text;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t cp = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) cp = cp << 6 | (utf8[i + k] & 0x3F);
    if (cp < 0x10000) {
      text.push_back(static_cast<char16_t>(cp));
    } else {
      text.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
    }
    i += length;
  }
  return text;
}

const std::u16string& precomposed() {
  static const std::u16string text = utf16Of(zeltest::utf8Text(zeltest::kLarge));
  return text;
}

template <typename Kernel>
void run(benchmark::State& state, const std::u16string& input, Kernel kernel) {
  for (auto _ : state) benchmark::DoNotOptimize(kernel(input));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size() * 2));
}

void BM_Decompose(benchmark::State& state) {
  run(state, precomposed(),
      [](const std::u16string& text) { return zel::strings::decomposeCharacters(text); });
}
BENCHMARK(BM_Decompose);

void BM_ComposePrecomposed(benchmark::State& state) {
  run(state, precomposed(),
      [](const std::u16string& text) { return zel::strings::composeCharacters(text); });
}
BENCHMARK(BM_ComposePrecomposed);

void BM_ComposeDecomposed(benchmark::State& state) {
  const std::u16string input = zel::strings::decomposeCharacters(precomposed());
  run(state, input,
      [](const std::u16string& text) { return zel::strings::composeCharacters(text); });
}
BENCHMARK(BM_ComposeDecomposed);

void BM_RemoveAccents(benchmark::State& state) {
  zel::strings::buildAccentMap();
  const auto* map = zel::strings::builtAccentMap();
  run(state, precomposed(), [map, ignoreCase = state.range(0) != 0](const std::u16string& text) {
    return zel::strings::removeAccents(text, ignoreCase, map);
  });
}
BENCHMARK(BM_RemoveAccents)->Arg(0)->Arg(1);

}  // namespace
