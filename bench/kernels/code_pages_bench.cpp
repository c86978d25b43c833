// Single-byte code pages over 1 MiB: decoding bytes and encoding UTF-16 text.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <string>

#include "bench_inputs.h"
#include "strings/code_pages.h"

namespace {

using zel::strings::CodePage;

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void BM_DecodeCodePage(benchmark::State& state, CodePage page) {
  const std::string input = zeltest::binaryData(zeltest::kLarge);
  for (auto _ : state) benchmark::DoNotOptimize(zel::strings::decodeCodePage(bytesOf(input), page));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
}
BENCHMARK_CAPTURE(BM_DecodeCodePage, iso8859_1, CodePage::Iso8859_1);
BENCHMARK_CAPTURE(BM_DecodeCodePage, windows1252, CodePage::Windows1252);

// Half a million units of every byte value's character, euro signs and quotes included.
void BM_EncodeCodePage(benchmark::State& state, CodePage page) {
  const std::string bytes = zeltest::binaryData(zeltest::kLarge / 2);
  const std::u16string input = zel::strings::decodeCodePage(bytesOf(bytes), CodePage::Windows1252);
  for (auto _ : state) benchmark::DoNotOptimize(zel::strings::encodeCodePage(input, page));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size() * 2));
}
BENCHMARK_CAPTURE(BM_EncodeCodePage, iso8859_1, CodePage::Iso8859_1);
BENCHMARK_CAPTURE(BM_EncodeCodePage, windows1252, CodePage::Windows1252);

}  // namespace
