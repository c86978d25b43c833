// Hexadecimal, URL, quoted-printable and mail-subject encoding through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 7> kFunctions = {
    "EncodingToHexZEL",     "DecodingFromHexZEL",           "EncodingToURLZEL",
    "DecodingFromURLZEL",   "EncodingToQuotedPrintableZEL", "DecodingFromQuotedPrintableZEL",
    "EncodeEmailSubjectZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {zeltest::kAllocationFailure};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
