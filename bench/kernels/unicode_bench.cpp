// Composition, decomposition and accent removal over 1 MiB of mixed Latin, Greek, Vietnamese
// and Hangul text.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "bench_inputs.h"
#include "strings/accent_map.h"
#include "strings/unicode_composition.h"
#include "text/utf8.h"

namespace {

std::u16string utf16Of(const std::string& utf8) {
  std::u16string text(utf8.size() + 1, u'\0');
  const auto result = zel::text::decodeUtf8(
      {reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()}, text.data());
  text.resize(result.units);
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
