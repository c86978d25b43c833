// Per-call overhead of one trivial registered call through the stand-in host, beside a memcpy of
// the argument's size as the yardstick.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>

#include "loaded_plugin.h"
#include "stand_in_host.h"

namespace {

constexpr const char* kTrivialCall = "IsASCIIStringZEL(s as string) as boolean";
constexpr std::string_view kArgument = "plain ascii text";

void BM_BoundCall(benchmark::State& state) {
  if (!zelbench::pluginRegisters(kTrivialCall))
    return state.SkipWithError("the trivial call is not registered yet");
  const auto function = zelhost::bind<RBBoolean, REALstring>(kTrivialCall);
  REALstring argument = zelhost::makeString(kArgument);
  for (auto _ : state) benchmark::DoNotOptimize(function(argument));
  zelhost::release(argument);
}
BENCHMARK(BM_BoundCall);

void BM_CallByDeclaration(benchmark::State& state) {
  if (!zelbench::pluginRegisters(kTrivialCall))
    return state.SkipWithError("the trivial call is not registered yet");
  REALstring argument = zelhost::makeString(kArgument);
  for (auto _ : state) benchmark::DoNotOptimize(zelhost::call<RBBoolean>(kTrivialCall, argument));
  zelhost::release(argument);
}
BENCHMARK(BM_CallByDeclaration);

void BM_MemcpyYardstick(benchmark::State& state) {
  std::array<char, kArgument.size()> target{};
  for (auto _ : state) {
    std::memcpy(target.data(), kArgument.data(), kArgument.size());
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_MemcpyYardstick);

}  // namespace
