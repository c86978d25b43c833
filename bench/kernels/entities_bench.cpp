// Entity encoders and the decoder over 1 Mi code points (ASCII-heavy and entity-heavy) and
// short inputs, plus the readiness test.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>

#include "bench_inputs.h"
#include "strings/entities.h"

namespace {

using namespace zel::strings;
using zeltest::kLarge;
using zeltest::kShort;

// Prose with an ampersand about every hundred characters, so the encoders do the full pass.
std::u32string asciiHeavy(std::size_t length) {
  const std::string prose = zeltest::asciiText(length);
  std::u32string text(prose.begin(), prose.end());
  for (std::size_t i = 10; i < text.size(); i += 100) text[i] = U'&';
  return text;
}

// Markup, accented Latin, Greek, symbols and CJK in about equal measure.
std::u32string entityHeavy(std::size_t length) {
  static constexpr std::u32string_view kPieces[] = {
      U"<b>",          U"caf\u00E9 ",    U"\u03B1\u03B2\u03B3 ", U"\u2264 \u2192 ",
      U"\"q\" & 'a' ", U"\u4E2D\u6587 ", U"\u00A0\u00A9\u20AC ", U"plain "};
  std::u32string text;
  std::mt19937 random(5);
  while (text.size() < length) text += kPieces[random() % std::size(kPieces)];
  text.resize(length);
  return text;
}

std::u32string encodedForDecoding(const std::u32string& text) {
  const auto html = encodeHtmlEntities(text, 0);
  return html ? std::u32string(html->begin(), html->end()) : text;
}

void setBytes(benchmark::State& state, std::size_t codePoints) {
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * codePoints * sizeof(char32_t)));
}

template <std::u32string (*makeInput)(std::size_t)>
void BM_EncodeHtml(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(encodeHtmlEntities(text, 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeHtml<asciiHeavy>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_EncodeHtml<entityHeavy>)->Arg(kShort)->Arg(kLarge);

template <std::u32string (*makeInput)(std::size_t)>
void BM_EncodeXml(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(encodeXmlEntities(text, 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeXml<asciiHeavy>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_EncodeXml<entityHeavy>)->Arg(kShort)->Arg(kLarge);

template <std::u32string (*makeInput)(std::size_t)>
void BM_DecodeEntities(benchmark::State& state) {
  const auto text = encodedForDecoding(makeInput(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(decodeEntities(text));
  setBytes(state, text.size());
}
BENCHMARK(BM_DecodeEntities<asciiHeavy>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_DecodeEntities<entityHeavy>)->Arg(kShort)->Arg(kLarge);

void BM_MarkupReady(benchmark::State& state) {
  const std::string text = zeltest::asciiText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(isMarkupReady(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_MarkupReady)->Arg(kShort)->Arg(kLarge);

}  // namespace
