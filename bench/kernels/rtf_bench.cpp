// Styled text to RTF and back, over prose cut into runs of changing style.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench_inputs.h"
#include "counting_sink.h"
#include "styledtext/rtf_reader.h"
#include "styledtext/rtf_writer.h"
#include "text/utf8.h"

namespace {

using zel::styledtext::RunStyle;
using zel::styledtext::RunText;
using zel::styledtext::StyleRunRecord;

std::u16string utf16FromUtf8(std::string_view utf8) {
  std::u16string out(utf8.size() + 1, u'\0');
  const auto result = zel::text::decodeUtf8(
      {reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()}, out.data());
  out.resize(result.units);
  return out;
}

// Runs of about 200 characters cycling through fonts, colours, sizes, toggles and alignments.
std::vector<StyleRunRecord> styledRuns(std::string_view utf8) {
  static const char* const kFonts[] = {"Arial", "Times New Roman", "Courier"};
  const std::u16string text = utf16FromUtf8(utf8);
  std::vector<StyleRunRecord> runs;
  for (std::size_t at = 0, index = 0; at < text.size(); at += 200, ++index) {
    StyleRunRecord run;
    run.bold = index % 2 == 1;
    run.italic = index % 3 == 1;
    run.underline = index % 5 == 1;
    run.textColor = static_cast<std::uint32_t>(index % 7) * 0x252525;
    run.size = 10 + static_cast<std::int64_t>(index % 4);
    run.alignment = static_cast<std::int64_t>(index / 4 % 4);
    run.font = kFonts[index % 3];
    run.text = text.substr(at, 200);
    runs.push_back(std::move(run));
  }
  return runs;
}

void writeRtf(benchmark::State& state, const std::string& input) {
  const std::vector<StyleRunRecord> runs = styledRuns(input);
  for (auto _ : state) benchmark::DoNotOptimize(zel::styledtext::writeRtf(runs));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
}

void readRtf(benchmark::State& state, const std::string& input) {
  const std::string rtf = zel::styledtext::writeRtf(styledRuns(input));
  zeltest::CountingSink sink;
  for (auto _ : state) {
    zel::styledtext::readRtf(rtf, sink);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * rtf.size()));
}

void BM_RtfWriteAscii(benchmark::State& state) {
  writeRtf(state, zeltest::asciiText(static_cast<std::size_t>(state.range(0))));
}
void BM_RtfWriteUtf8(benchmark::State& state) {
  writeRtf(state, zeltest::utf8Text(static_cast<std::size_t>(state.range(0))));
}
void BM_RtfReadAscii(benchmark::State& state) {
  readRtf(state, zeltest::asciiText(static_cast<std::size_t>(state.range(0))));
}
void BM_RtfReadUtf8(benchmark::State& state) {
  readRtf(state, zeltest::utf8Text(static_cast<std::size_t>(state.range(0))));
}

BENCHMARK(BM_RtfWriteAscii)->Arg(zeltest::kShort)->Arg(zeltest::kLarge);
BENCHMARK(BM_RtfWriteUtf8)->Arg(zeltest::kShort)->Arg(zeltest::kLarge);
BENCHMARK(BM_RtfReadAscii)->Arg(zeltest::kShort)->Arg(zeltest::kLarge);
BENCHMARK(BM_RtfReadUtf8)->Arg(zeltest::kShort)->Arg(zeltest::kLarge);

}  // namespace
