// Number formatting and string distances through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 4> kFunctions = {
    "StrZEL", "ScientificStrZEL", "LevenshteinDistanceZEL", "JaroWinklerDistanceZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {
    zeltest::kAllocationFailure,
    zeltest::DocumentedException{"OutOfMemoryException", "Failed to allocate ", true}};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
