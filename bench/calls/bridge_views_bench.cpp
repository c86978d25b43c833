// Opening each view of a 1 MiB host string argument, per kind of text, beside a
// memcpy of the same size: the bridge's share of every registered call.
#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bridge/host_text.h"
#include "framework/debug_log.h"
#include "framework/plugin_state.h"
#include "kernels/bench_inputs.h"
#include "stand_in_host.h"

namespace {

using zeltest::kLarge;

struct Argument {
  const char* name;
  std::string bytes;
  std::uint32_t encoding;
};

std::string latin1Text(std::size_t bytes) {
  std::string text = zeltest::asciiText(bytes);
  for (std::size_t i = 5; i < text.size(); i += 11) text[i] = '\xE9';
  return text;
}

std::string utf16Text(std::size_t bytes) {
  const std::string utf8 = zeltest::utf8Text(bytes / 2);
  std::vector<char16_t> units(utf8.size() + 1);
  const auto decoded = zel::decodeUtf8(
      {reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()}, units.data());
  return {reinterpret_cast<const char*>(units.data()), decoded.units * 2};
}

const std::vector<Argument>& arguments() {
  static const std::vector<Argument> all = {
      {"ascii", zeltest::asciiText(kLarge), encoding::kUTF8},
      {"latin1", latin1Text(kLarge), encoding::kISOLatin1},
      {"utf8", zeltest::utf8Text(kLarge), encoding::kUTF8},
      {"utf16", utf16Text(kLarge), encoding::kUTF16},
  };
  return all;
}

void startBridge() {
  static const bool started = [] {
    zelhost::configure({});
    REALPluginMain(zelhost::resolve);
    zel::setDebugEnabled(false);
    return true;
  }();
  benchmark::DoNotOptimize(started);
}

using ViewOpener = std::function<const void*(zel::HostText&)>;

void openView(benchmark::State& state, const Argument& argument, const ViewOpener& open) {
  startBridge();
  REALstring source = zelhost::makeString(argument.bytes, argument.encoding);
  for (auto _ : state) {
    zel::HostText text(source);
    benchmark::DoNotOptimize(open(text));
  }
  zelhost::release(source);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * argument.bytes.size()));
}

void memcpyYardstick(benchmark::State& state) {
  const std::string source = zeltest::asciiText(kLarge);
  std::string target(kLarge, '\0');
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), kLarge);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLarge));
}

const bool registered = [] {
  const std::pair<const char*, ViewOpener> views[] = {
      {"ascii", [](zel::HostText& t) -> const void* { return t.ascii().data(); }},
      {"utf8", [](zel::HostText& t) -> const void* { return t.utf8().data(); }},
      {"utf16", [](zel::HostText& t) -> const void* { return t.utf16().data(); }},
      {"utf32", [](zel::HostText& t) -> const void* { return t.utf32().data(); }},
  };
  for (const Argument& argument : arguments()) {
    for (const auto& [viewName, open] : views) {
      const std::string name = std::string("BM_HostTextView/") + argument.name + "/" + viewName;
      benchmark::RegisterBenchmark(name.c_str(), [&argument, open = open](benchmark::State& s) {
        openView(s, argument, open);
      });
    }
  }
  benchmark::RegisterBenchmark("BM_HostTextView/memcpy_yardstick", memcpyYardstick);
  return true;
}();

}  // namespace
