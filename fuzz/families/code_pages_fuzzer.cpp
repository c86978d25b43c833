// Single-byte code pages through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 4> kFunctions = {
    "EncodingToISO8859ZEL", "DecodingFromISO8859ZEL", "EncodingToCP1252ZEL",
    "DecodingFromCP1252ZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {zeltest::kAllocationFailure};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
