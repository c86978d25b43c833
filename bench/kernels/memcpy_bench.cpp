// The yardstick: copying the same number of bytes that the other suites process.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench_inputs.h"

namespace {

void BM_Memcpy(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  std::vector<char> source(size, 'x'), target(size);
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), size);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}
BENCHMARK(BM_Memcpy)->Arg(zeltest::kShort)->Arg(zeltest::kSmall)->Arg(zeltest::kLarge);

}  // namespace
