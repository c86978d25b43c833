// HTML and XML entities through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 6> kFunctions = {
    "EncodingToHTMLZEL",  "DecodingFromHTMLZEL",  "EncodingToXMLZEL",
    "DecodingFromXMLZEL", "StringIsHTMLreadyZEL", "StringIsXMLreadyZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {
    zelfuzz::kAllocationFailure,
    zelfuzz::DocumentedException{"RuntimeException", "C++ Exception: ", true}};
constexpr zelfuzz::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
