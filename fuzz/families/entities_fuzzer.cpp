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

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zelfuzz::loadPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return zelfuzz::fuzzFamily(kFamily, data, size);
}
