// Tag stripping and SQL boolean rewriting through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 3> kFunctions = {
    "RemoveHTMLTagsZEL", "RemoveHTMLTagsWithZEL", "SQLReplaceBooleanZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {zeltest::kAllocationFailure};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
