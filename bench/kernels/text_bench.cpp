// Line endings, UTF-8 repair, readable strings and text search over 1 MiB and short inputs.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <string>

#include "bench_inputs.h"
#include "strings/line_endings.h"
#include "strings/text_search.h"
#include "strings/utf8_repair.h"

namespace {

using namespace zel::strings;
using zeltest::kLarge;
using zeltest::kShort;

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void setBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_ReplaceLineEndings(benchmark::State& state) {
  const std::string text = zeltest::asciiText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(replaceLineEndings(text, "\r\n", true, [] {}));
  setBytes(state, text.size());
}
BENCHMARK(BM_ReplaceLineEndings)->Arg(kShort)->Arg(kLarge);

template <std::string (*makeInput)(std::size_t)>
void BM_RepairUtf8(benchmark::State& state) {
  const std::string data = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(repairUtf8(bytesOf(data), "\xEF\xBF\xBD"));
  setBytes(state, data.size());
}
BENCHMARK(BM_RepairUtf8<zeltest::asciiText>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_RepairUtf8<zeltest::utf8Text>)->Arg(kShort)->Arg(kLarge);
BENCHMARK(BM_RepairUtf8<zeltest::binaryData>)->Arg(kLarge);

template <std::string (*makeInput)(std::size_t)>
void BM_ReadableStrings(benchmark::State& state) {
  const std::string data = makeInput(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(readableStrings(bytesOf(data), 4));
  setBytes(state, data.size());
}
BENCHMARK(BM_ReadableStrings<zeltest::utf8Text>)->Arg(kLarge);
BENCHMARK(BM_ReadableStrings<zeltest::binaryData>)->Arg(kShort)->Arg(kLarge);

void BM_ContainsWholeWord(benchmark::State& state) {
  // "fox" occurs often, but never as "foxes": every occurrence is examined and rejected.
  const std::string text = zeltest::asciiText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(containsWholeWord(text, "Foxes"));
  setBytes(state, text.size());
}
BENCHMARK(BM_ContainsWholeWord)->Arg(kShort)->Arg(kLarge);

void BM_CountOccurrences(benchmark::State& state) {
  const std::string text = zeltest::asciiText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(countOccurrences(text, "the "));
  setBytes(state, text.size());
}
BENCHMARK(BM_CountOccurrences)->Arg(kShort)->Arg(kLarge);

}  // namespace
