// Whole registered calls through the stand-in host with a 1 MiB argument, each beside its kernel
// alone on the same bytes and a memcpy of the argument's size, so that the host boundary's share
// of a call (reading the argument, building the result string) shows.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "kernels/bench_inputs.h"
#include "loaded_plugin.h"
#include "stand_in_host.h"
#include "strings/byte_ops.h"
#include "strings/entities.h"
#include "strings/transfer_encodings.h"
#include "strings/unicode_composition.h"
#include "strings/utf8_repair.h"
#include "text/utf8.h"

namespace {

using zeltest::kLarge;

constexpr std::string_view kMask = "mask";
constexpr std::string_view kPlaceholder = "?";
constexpr std::size_t kAmpersandSpacing = 100;
constexpr std::int64_t kUrlOptions = 1;

// A host string argument owned by the benchmark for as long as it runs.
class Argument {
 public:
  Argument(std::string_view bytes, std::uint32_t textEncoding)
      : string_(zelhost::makeString(bytes, textEncoding)) {}
  ~Argument() { zelhost::release(string_); }
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;
  REALstring get() const { return string_; }

 private:
  REALstring string_;
};

void setBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

// The result is released inside the loop, as compiled host code releases it after use.
template <class Result, class... Args>
void callRegistered(benchmark::State& state, const char* declaration, std::size_t bytes,
                    Args... args) {
  if (!zelbench::pluginRegisters(declaration))
    return state.SkipWithError("the function is not registered");
  const auto function = zelhost::bind<Result, Args...>(declaration);
  for (auto _ : state) {
    const Result result = function(args...);
    if constexpr (std::is_same_v<Result, REALstring>) {
      zelhost::release(result);
    } else {
      benchmark::DoNotOptimize(result);
    }
  }
  setBytes(state, bytes);
}

template <class Kernel>
void runKernel(benchmark::State& state, std::size_t bytes, Kernel kernel) {
  for (auto _ : state) benchmark::DoNotOptimize(kernel());
  setBytes(state, bytes);
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::u16string utf16Of(std::string_view utf8) {
  std::u16string units(utf8.size() + 1, u'\0');
  units.resize(zel::text::decodeUtf8(bytesOf(utf8), units.data()).units);
  return units;
}

const std::string& asciiProse() {
  static const std::string text = zeltest::asciiText(kLarge);
  return text;
}

const std::string& binary() {
  static const std::string data = zeltest::binaryData(kLarge);
  return data;
}

// Half a MiB of binary data, so that its hex text is the 1 MiB argument.
const std::string& hexText() {
  static const std::string text = zel::strings::encodeHex(zeltest::binaryData(kLarge / 2));
  return text;
}

// Prose with an ampersand every hundred characters: the encoder has to build a new string.
const std::string& markupProse() {
  static const std::string text = [] {
    std::string prose = zeltest::asciiText(kLarge);
    for (std::size_t i = 0; i < prose.size(); i += kAmpersandSpacing) prose[i] = '&';
    return prose;
  }();
  return text;
}

const std::string& european() {
  static const std::string text = zeltest::europeanText(kLarge);
  return text;
}

const std::string& mixedScripts() {
  static const std::string text = zeltest::utf8Text(kLarge);
  return text;
}

void maskCall(benchmark::State& state) {
  const Argument data(binary(), encoding::kNone), mask(kMask, encoding::kASCII);
  callRegistered<REALstring>(
      state, "StringXORZEL(data as string, XorMask as string, MaskOffset as integer = 0) as string",
      binary().size(), data.get(), mask.get(), RBInteger{0});
}
void maskKernel(benchmark::State& state) {
  runKernel(state, binary().size(), [] { return zel::strings::maskXor(binary(), kMask, 0); });
}

void isAsciiCall(benchmark::State& state) {
  const Argument text(asciiProse(), encoding::kUTF8);
  callRegistered<RBBoolean>(state, "IsASCIIStringZEL(s as string) as boolean", asciiProse().size(),
                            text.get());
}
void isAsciiKernel(benchmark::State& state) {
  runKernel(state, asciiProse().size(), [] { return zel::strings::isAscii(asciiProse()); });
}

void hexEncodeCall(benchmark::State& state) {
  const Argument data(binary(), encoding::kNone);
  callRegistered<REALstring>(state, "EncodingToHexZEL(s as string) as string", binary().size(),
                             data.get());
}
void hexEncodeKernel(benchmark::State& state) {
  runKernel(state, binary().size(), [] { return zel::strings::encodeHex(binary()); });
}

void hexDecodeCall(benchmark::State& state) {
  const Argument text(hexText(), encoding::kASCII);
  callRegistered<REALstring>(state, "DecodingFromHexZEL(s as string) as string", hexText().size(),
                             text.get());
}
void hexDecodeKernel(benchmark::State& state) {
  runKernel(state, hexText().size(), [] { return zel::strings::decodeHex(hexText()); });
}

void urlEncodeCall(benchmark::State& state) {
  const Argument text(asciiProse(), encoding::kUTF8);
  callRegistered<REALstring>(state, "EncodingToURLZEL(s as string, options as integer) as string",
                             asciiProse().size(), text.get(), RBInteger{kUrlOptions});
}
void urlEncodeKernel(benchmark::State& state) {
  runKernel(state, asciiProse().size(),
            [] { return zel::strings::encodeUrl(asciiProse(), kUrlOptions); });
}

void htmlEncodeCall(benchmark::State& state) {
  const Argument text(markupProse(), encoding::kUTF8);
  callRegistered<REALstring>(state,
                             "EncodingToHTMLZEL(s as string, options as integer = 0) as string",
                             markupProse().size(), text.get(), RBInteger{0});
}
// UTF-8 arguments are encoded from their own bytes.
void htmlEncodeKernel(benchmark::State& state) {
  runKernel(state, markupProse().size(),
            [] { return zel::strings::encodeHtmlEntities(std::string_view(markupProse()), 0); });
}

void utf8CheckCall(benchmark::State& state, const std::string& bytes) {
  const Argument data(bytes, encoding::kNone), placeholder(kPlaceholder, encoding::kUTF8);
  callRegistered<REALstring>(state, "CheckUTF8ZEL(data as string, Placeholder as string) as string",
                             bytes.size(), data.get(), placeholder.get());
}
void utf8CheckKernel(benchmark::State& state, const std::string& bytes) {
  runKernel(state, bytes.size(),
            [&bytes] { return zel::strings::repairUtf8(bytesOf(bytes), kPlaceholder); });
}

void composeCall(benchmark::State& state) {
  const Argument text(mixedScripts(), encoding::kUTF8);
  callRegistered<REALstring>(state,
                             "ConvertUnicodeToCharacterCompositionZEL(text as string) as string",
                             mixedScripts().size(), text.get());
}
void composeKernel(benchmark::State& state) {
  const std::u16string text = utf16Of(mixedScripts());
  runKernel(state, mixedScripts().size(),
            [&text] { return zel::strings::composeCharacters(text); });
}

void memcpyYardstick(benchmark::State& state) {
  std::string target(kLarge, '\0');
  for (auto _ : state) {
    std::memcpy(target.data(), asciiProse().data(), kLarge);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  setBytes(state, kLarge);
}

using Runner = std::function<void(benchmark::State&)>;

struct Work {
  const char* name;
  Runner call;
  Runner kernel;
};

const bool registered = [] {
  const Work works[] = {
      {"mask_xor", maskCall, maskKernel},
      {"is_ascii", isAsciiCall, isAsciiKernel},
      {"hex_encode", hexEncodeCall, hexEncodeKernel},
      {"hex_decode", hexDecodeCall, hexDecodeKernel},
      {"url_encode", urlEncodeCall, urlEncodeKernel},
      {"html_encode", htmlEncodeCall, htmlEncodeKernel},
      {"utf8_check_ascii", [](auto& s) { utf8CheckCall(s, asciiProse()); },
       [](auto& s) { utf8CheckKernel(s, asciiProse()); }},
      {"utf8_check_european", [](auto& s) { utf8CheckCall(s, european()); },
       [](auto& s) { utf8CheckKernel(s, european()); }},
      {"compose_composed", composeCall, composeKernel},
  };
  for (const Work& work : works) {
    const std::string prefix = std::string("BM_EndToEnd/") + work.name;
    benchmark::RegisterBenchmark((prefix + "/call").c_str(), work.call);
    benchmark::RegisterBenchmark((prefix + "/kernel").c_str(), work.kernel);
  }
  benchmark::RegisterBenchmark("BM_EndToEnd/memcpy", memcpyYardstick);
  return true;
}();

}  // namespace
