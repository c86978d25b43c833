// Hex, URL and quoted-printable coders over short and 1 MiB inputs.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_inputs.h"
#include "strings/transfer_encodings.h"

namespace {

using zeltest::kLarge;
using zeltest::kShort;

// range(1) picks the input: 0 ASCII prose, 1 binary data, 2 UTF-8 text.
std::string input(const benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  switch (state.range(1)) {
    case 0:
      return zeltest::asciiText(size);
    case 1:
      return zeltest::binaryData(size);
    default:
      return zeltest::utf8Text(size);
  }
}

// Decoders are measured on what the encoder made of the input, bytes counted at the decoder.
template <typename Kernel>
void run(benchmark::State& state, const std::string& text, Kernel kernel) {
  for (auto _ : state) benchmark::DoNotOptimize(kernel(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void BM_EncodeHex(benchmark::State& state) {
  run(state, input(state), zel::strings::encodeHex);
}
void BM_DecodeHex(benchmark::State& state) {
  run(state, zel::strings::encodeHex(input(state)), zel::strings::decodeHex);
}
void BM_EncodeUrl(benchmark::State& state) {
  run(state, input(state), [](std::string_view s) { return zel::strings::encodeUrl(s, 1); });
}
void BM_DecodeUrl(benchmark::State& state) {
  run(state, zel::strings::encodeUrl(input(state), 1),
      [](std::string_view s) { return zel::strings::decodeUrl(s, 1); });
}
void BM_EncodeQuotedPrintable(benchmark::State& state) {
  run(state, input(state),
      [](std::string_view s) { return zel::strings::encodeQuotedPrintable(s, 76); });
}
void BM_DecodeQuotedPrintable(benchmark::State& state) {
  run(state, zel::strings::encodeQuotedPrintable(input(state), 76),
      zel::strings::decodeQuotedPrintable);
}
void BM_EncodeEmailSubject(benchmark::State& state) {
  run(state, input(state), zel::strings::encodeEmailSubject);
}

void inputs(benchmark::internal::Benchmark* bench) {
  for (const auto size : {kShort, kLarge}) {
    for (const int kind : {0, 1, 2}) bench->Args({static_cast<std::int64_t>(size), kind});
  }
}
BENCHMARK(BM_EncodeHex)->Args({kShort, 1})->Args({kLarge, 1});
BENCHMARK(BM_DecodeHex)->Args({kShort, 1})->Args({kLarge, 1});
BENCHMARK(BM_EncodeUrl)->Apply(inputs);
BENCHMARK(BM_DecodeUrl)->Apply(inputs);
BENCHMARK(BM_EncodeQuotedPrintable)->Apply(inputs);
BENCHMARK(BM_DecodeQuotedPrintable)->Apply(inputs);
BENCHMARK(BM_EncodeEmailSubject)->Args({kShort, 2})->Args({kLarge, 2});

}  // namespace
