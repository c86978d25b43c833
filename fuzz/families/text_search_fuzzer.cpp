// Text search, comparison, line endings and UTF-8 repair through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 8> kFunctions = {
    "HasPrefixZEL",         "HasPostfixZEL",         "ContainsWholeWordZEL",  "CountOccurancesZEL",
    "StrCompCharactersZEL", "ReplaceLineEndingsZEL", "GetStringsFromDataZEL", "CheckUTF8ZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {zeltest::kAllocationFailure};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
