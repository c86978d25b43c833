// Composition, decomposition and accent removal over 1 MiB of mixed Latin, Greek, Vietnamese
// and Hangul text; composition and decomposition of Western European and Vietnamese text, each
// already composed and decomposed, beside ICU's NFC and NFD and a memcpy of the same bytes.
#include <benchmark/benchmark.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

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

// Vietnamese prose: most syllables carry one or two marks, many outside Latin-1.
std::string vietnameseText(std::size_t bytes) {
  static constexpr std::string_view kWords[] = {
      "Tiếng ", "Việt ", "là ",   "ngôn ",  "ngữ ",   "của ",   "người ", "dân ",
      "tộc ",   "và ",   "được ", "sử ",    "dụng ",  "chính ", "thức ",  "tại ",
      "nước ",  "có ",   "một ",  "những ", "trong ", "đã ",    "học ",   "sinh.\n"};
  return zeltest::detail::textOf(kWords, bytes, 13);
}

enum class Sample { european, europeanDecomposed, vietnamese, vietnameseDecomposed };

const std::u16string& sample(Sample which) {
  static const std::u16string european = utf16Of(zeltest::europeanText(zeltest::kLarge));
  static const std::u16string vietnamese = utf16Of(vietnameseText(zeltest::kLarge));
  static const std::u16string europeanDecomposed = zel::strings::decomposeCharacters(european);
  static const std::u16string vietnameseDecomposed = zel::strings::decomposeCharacters(vietnamese);
  switch (which) {
    case Sample::european:
      return european;
    case Sample::europeanDecomposed:
      return europeanDecomposed;
    case Sample::vietnamese:
      return vietnamese;
    case Sample::vietnameseDecomposed:
      return vietnameseDecomposed;
  }
  throw std::logic_error("unknown sample");
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

void BM_ComposeSample(benchmark::State& state, Sample which) {
  run(state, sample(which),
      [](const std::u16string& text) { return zel::strings::composeCharacters(text); });
}

void BM_DecomposeSample(benchmark::State& state, Sample which) {
  run(state, sample(which),
      [](const std::u16string& text) { return zel::strings::decomposeCharacters(text); });
}

const icu::Normalizer2& icuNormalizer(UNormalization2Mode mode) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getInstance(nullptr, "nfc", mode, status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  return *normalizer;
}

void runIcu(benchmark::State& state, Sample which, UNormalization2Mode mode) {
  const std::u16string& text = sample(which);
  const icu::UnicodeString input(text.data(), static_cast<std::int32_t>(text.size()));
  const icu::Normalizer2& normalizer = icuNormalizer(mode);
  run(state, text, [&](const std::u16string&) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString output = normalizer.normalize(input, status);
    if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
    return output;
  });
}

void BM_IcuNfc(benchmark::State& state, Sample which) {
  runIcu(state, which, UNORM2_COMPOSE);
}

void BM_IcuNfd(benchmark::State& state, Sample which) {
  runIcu(state, which, UNORM2_DECOMPOSE);
}

void BM_MemcpySample(benchmark::State& state, Sample which) {
  const std::u16string& text = sample(which);
  std::vector<char16_t> target(text.size());
  for (auto _ : state) {
    std::memcpy(target.data(), text.data(), text.size() * sizeof(char16_t));
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size() * 2));
}

// The machine is shared, so the fastest repetition is the one to compare.
double fastest(const std::vector<double>& repetitions) {
  return *std::min_element(repetitions.begin(), repetitions.end());
}

#define ZEL_SAMPLE_BENCHMARKS(kernel)                                                           \
  BENCHMARK_CAPTURE(kernel, european, Sample::european)->ComputeStatistics("min", fastest);     \
  BENCHMARK_CAPTURE(kernel, europeanDecomposed, Sample::europeanDecomposed)                     \
      ->ComputeStatistics("min", fastest);                                                      \
  BENCHMARK_CAPTURE(kernel, vietnamese, Sample::vietnamese)->ComputeStatistics("min", fastest); \
  BENCHMARK_CAPTURE(kernel, vietnameseDecomposed, Sample::vietnameseDecomposed)                 \
      ->ComputeStatistics("min", fastest)

ZEL_SAMPLE_BENCHMARKS(BM_ComposeSample);
ZEL_SAMPLE_BENCHMARKS(BM_IcuNfc);
ZEL_SAMPLE_BENCHMARKS(BM_DecomposeSample);
ZEL_SAMPLE_BENCHMARKS(BM_IcuNfd);
ZEL_SAMPLE_BENCHMARKS(BM_MemcpySample);

void BM_RemoveAccents(benchmark::State& state) {
  zel::strings::buildAccentMap();
  const auto* map = zel::strings::builtAccentMap();
  run(state, precomposed(), [map, ignoreCase = state.range(0) != 0](const std::u16string& text) {
    return zel::strings::removeAccents(text, ignoreCase, map);
  });
}
BENCHMARK(BM_RemoveAccents)->Arg(0)->Arg(1);

}  // namespace
