// String distances on 8- to 10,000-unit texts that share most of their words but not their ends:
// time, and the heap the distance needs at its peak.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "allocation_meter.h"
#include "bench_inputs.h"
#include "strings/string_distance.h"

namespace {

constexpr std::size_t kWordUnits = 64;
constexpr char16_t kOtherEnd = u'#';

std::u16string widened(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

template <double (*Distance)(std::u16string_view, std::u16string_view)>
void BM_Distance(benchmark::State& state) {
  const auto length = static_cast<std::size_t>(state.range(0));
  const std::u16string a = widened(zeltest::asciiText(length));
  std::u16string b = a;
  for (std::size_t i = 3; i + 1 < b.size(); i += 13) std::swap(b[i], b[i + 1]);
  // Different ends, so that no common prefix or suffix shortens the work.
  b.front() = kOtherEnd;
  b.back() = kOtherEnd;
  // Long texts also differ by an insertion; short ones keep their length so that both sides
  // stay within the stated size.
  if (length > kWordUnits) b.insert(b.size() / 2, u"inserted ");
  for (auto _ : state) benchmark::DoNotOptimize(Distance(a, b));
  zeltest::resetPeakHeap();
  benchmark::DoNotOptimize(Distance(a, b));
  state.counters["peak_heap_bytes"] = static_cast<double>(zeltest::peakHeapGrowth());
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * (a.size() + b.size()) * 2));
}
BENCHMARK(BM_Distance<zel::strings::levenshteinDistance>)
    ->Name("BM_Levenshtein")
    ->Arg(8)
    ->Arg(64)
    ->Arg(100)
    ->Arg(10000);
BENCHMARK(BM_Distance<zel::strings::jaroWinklerDistance>)
    ->Name("BM_JaroWinkler")
    ->Arg(8)
    ->Arg(64)
    ->Arg(100)
    ->Arg(10000);

}  // namespace
