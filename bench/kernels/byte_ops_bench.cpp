// Masks and byte-set searches over short and 1 MiB inputs.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_inputs.h"
#include "strings/byte_ops.h"

namespace {

using zeltest::kLarge;
using zeltest::kShort;

void setBytes(benchmark::State& state, std::size_t bytesPerCall) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytesPerCall));
}

// range(1) is the mask length; 0 means a mask as long as the data.
template <typename Kernel>
void runMask(benchmark::State& state, Kernel kernel) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string data = zeltest::binaryData(size);
  const auto maskSize = state.range(1) == 0 ? size : static_cast<std::size_t>(state.range(1));
  const std::string mask = zeltest::asciiText(maskSize);
  for (auto _ : state) benchmark::DoNotOptimize(kernel(data, mask));
  setBytes(state, size);
}

void BM_MaskAnd(benchmark::State& state) {
  runMask(state, zel::strings::maskAnd);
}
void BM_MaskOr(benchmark::State& state) {
  runMask(state, zel::strings::maskOr);
}
void BM_MaskXor(benchmark::State& state) {
  runMask(state,
          [](std::string_view d, std::string_view m) { return zel::strings::maskXor(d, m, 0); });
}
void BM_MaskXorWithPosition(benchmark::State& state) {
  runMask(state, [](std::string_view d, std::string_view m) {
    return zel::strings::maskXorWithPosition(d, m, 0);
  });
}

void maskArguments(benchmark::internal::Benchmark* bench) {
  for (const auto size : {kShort, kLarge}) {
    for (const int maskSize : {1, 2, 3, 4, 7, 0})
      bench->Args({static_cast<std::int64_t>(size), maskSize});
  }
}
BENCHMARK(BM_MaskAnd)->Apply(maskArguments);
BENCHMARK(BM_MaskOr)->Apply(maskArguments);
BENCHMARK(BM_MaskXor)->Apply(maskArguments);
BENCHMARK(BM_MaskXorWithPosition)->Args({kShort, 5})->Args({kLarge, 5});

// The searches scan to the end: the target holds none of the sought bytes.
void BM_PositionOfAnyByte(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string target = zeltest::asciiText(size);
  const std::string set = state.range(1) == 1 ? "#" : "#$%{}";
  for (auto _ : state) benchmark::DoNotOptimize(zel::strings::positionOfAnyByte(target, set));
  setBytes(state, size);
}
BENCHMARK(BM_PositionOfAnyByte)
    ->Args({kShort, 1})
    ->Args({kLarge, 1})
    ->Args({kShort, 5})
    ->Args({kLarge, 5});

void BM_PositionOfByteInRanges(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string target = zeltest::asciiText(size);
  const zel::strings::ByteRange ranges[] = {{0, 9}, {128, 255}};
  for (auto _ : state)
    benchmark::DoNotOptimize(zel::strings::positionOfByteInRanges(target, ranges));
  setBytes(state, size);
}
BENCHMARK(BM_PositionOfByteInRanges)->Arg(kShort)->Arg(kLarge);

void BM_PositionOfSignedByteInRangesOrSet(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string target = zeltest::asciiText(size);
  const zel::strings::ByteRange ranges[] = {{-128, -1}};
  for (auto _ : state) {
    benchmark::DoNotOptimize(zel::strings::positionOfSignedByteInRangesOrSet(target, "#$", ranges));
  }
  setBytes(state, size);
}
BENCHMARK(BM_PositionOfSignedByteInRangesOrSet)->Arg(kShort)->Arg(kLarge);

// Every byte passes each mode, so each test reads to the end.
void BM_IsAscii(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string text(size, 'a');
  for (auto _ : state) benchmark::DoNotOptimize(zel::strings::isAscii(text, state.range(1)));
  setBytes(state, size);
}
BENCHMARK(BM_IsAscii)->ArgsProduct({{kShort, kLarge}, {0, 1, 2}});

}  // namespace
