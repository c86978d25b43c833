// Entity encoders over 1 MiB of UTF-8 (ASCII-heavy and entity-heavy), directly and through the
// UTF-32 view, the decoder, and short inputs, plus the readiness test.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <span>
#include <string>

#include "bench_inputs.h"
#include "strings/entities.h"
#include "text/utf8.h"

namespace {

using namespace zel::strings;
using zeltest::kLarge;
using zeltest::kShort;

// Prose with an ampersand about every hundred bytes, so the encoders do the full pass.
std::string asciiHeavy(std::size_t length) {
  std::string text = zeltest::asciiText(length);
  for (std::size_t i = 10; i < text.size(); i += 100) text[i] = '&';
  return text;
}

// Markup, accented Latin, Greek, symbols and CJK in about equal measure.
std::string entityHeavy(std::size_t length) {
  static constexpr std::string_view kPieces[] = {
      "<b>",          "caf\u00E9 ",    "\u03B1\u03B2\u03B3 ", "\u2264 \u2192 ",
      "\"q\" & 'a' ", "\u4E2D\u6587 ", "\u00A0\u00A9\u20AC ", "plain "};
  std::string text;
  std::mt19937 random(5);
  while (text.size() < length) text += kPieces[random() % std::size(kPieces)];
  return text;
}

// What the plug-in's UTF-32 view of the text holds.
std::u32string codePointsOf(std::string_view utf8) {
  std::u32string out(utf8.size() + 1, U'\0');
  const auto result = zel::text::decodeUtf8(
      std::span(reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()), out.data());
  out.resize(result.units);
  return out;
}

std::u32string encodedForDecoding(std::size_t length) {
  const std::u32string text = codePointsOf(entityHeavy(length));
  const auto html = encodeHtmlEntities(text, 0);
  return html ? std::u32string(html->begin(), html->end()) : text;
}

void setBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

// The encoders over the UTF-8 bytes; bytes processed are the UTF-8 input's, as for BM_Memcpy.
template <std::string (*makeInput)(std::size_t)>
void BM_EncodeHtml(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(encodeHtmlEntities(std::string_view(text), 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeHtml<asciiHeavy>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_EncodeHtml<entityHeavy>)->Arg(kShort)->Arg(kLarge);

template <std::string (*makeInput)(std::size_t)>
void BM_EncodeXml(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(encodeXmlEntities(std::string_view(text), 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeXml<asciiHeavy>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_EncodeXml<entityHeavy>)->Arg(kShort)->Arg(kLarge);

// The route of text in other encodings, over the UTF-32 view of the same UTF-8 bytes (made
// outside the loop, though the view costs a conversion of its own).
template <std::string (*makeInput)(std::size_t)>
void BM_EncodeHtmlViaCodePoints(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  const std::u32string codePoints = codePointsOf(text);
  for (auto _ : state) benchmark::DoNotOptimize(encodeHtmlEntities(codePoints, 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeHtmlViaCodePoints<asciiHeavy>)->Arg(kLarge);
BENCHMARK(BM_EncodeHtmlViaCodePoints<entityHeavy>)->Arg(kLarge);

template <std::string (*makeInput)(std::size_t)>
void BM_EncodeXmlViaCodePoints(benchmark::State& state) {
  const auto text = makeInput(static_cast<std::size_t>(state.range(0)));
  const std::u32string codePoints = codePointsOf(text);
  for (auto _ : state) benchmark::DoNotOptimize(encodeXmlEntities(codePoints, 0));
  setBytes(state, text.size());
}
BENCHMARK(BM_EncodeXmlViaCodePoints<asciiHeavy>)->Arg(kLarge);
BENCHMARK(BM_EncodeXmlViaCodePoints<entityHeavy>)->Arg(kLarge);

void BM_DecodeEntities(benchmark::State& state) {
  const auto text = encodedForDecoding(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(decodeEntities(text));
  setBytes(state, text.size() * sizeof(char32_t));
}
BENCHMARK(BM_DecodeEntities)->Arg(kShort)->Arg(kLarge);

void BM_MarkupReady(benchmark::State& state) {
  const std::string text = zeltest::asciiText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(isMarkupReady(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_MarkupReady)->Arg(kShort)->Arg(kLarge);

}  // namespace
