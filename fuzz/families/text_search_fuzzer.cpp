// Text search, comparison, line endings and UTF-8 repair through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 8> kFunctions = {
    "HasPrefixZEL",         "HasPostfixZEL",         "ContainsWholeWordZEL",  "CountOccurancesZEL",
    "StrCompCharactersZEL", "ReplaceLineEndingsZEL", "GetStringsFromDataZEL", "CheckUTF8ZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {zelfuzz::kAllocationFailure};
constexpr zelfuzz::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zelfuzz::loadPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return zelfuzz::fuzzFamily(kFamily, data, size);
}
