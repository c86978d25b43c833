// UTF-8 to UTF-16 and UTF-32, validation and repair over ASCII, European and CJK text.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "bench_inputs.h"
#include "strings/utf8_repair.h"
#include "text/utf8.h"

namespace {

using zeltest::kLarge;
using zeltest::kSmall;

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

template <std::string (*makeInput)(std::size_t), class Unit>
void BM_Utf8Decode(benchmark::State& state) {
  const std::string data = makeInput(static_cast<std::size_t>(state.range(0)));
  std::vector<Unit> out(data.size() + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(zel::text::decodeUtf8(bytesOf(data), out.data()));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_Utf8Decode<zeltest::asciiText, char16_t>)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BM_Utf8Decode<zeltest::europeanText, char16_t>)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BM_Utf8Decode<zeltest::cjkText, char16_t>)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BM_Utf8Decode<zeltest::europeanText, char32_t>)->Arg(kLarge);

template <std::string (*makeInput)(std::size_t)>
void BM_Utf8Repair(benchmark::State& state) {
  const std::string data = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(zel::strings::repairUtf8(bytesOf(data), "?"));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_Utf8Repair<zeltest::asciiText>)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BM_Utf8Repair<zeltest::europeanText>)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BM_Utf8Repair<zeltest::cjkText>)->Arg(kSmall)->Arg(kLarge);

}  // namespace
