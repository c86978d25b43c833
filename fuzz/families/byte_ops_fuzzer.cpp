// Byte-string operations through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 17> kFunctions = {"StringANDZEL",
                                                         "StringORZEL",
                                                         "StringXORZEL",
                                                         "StringXOR2ZEL",
                                                         "ConcatBinaryStringsZEL",
                                                         "InStrBytesZEL",
                                                         "InStrByteRangeZEL",
                                                         "StrCompBytesZEL",
                                                         "CreateStringZEL",
                                                         "ClearStringContentZEL",
                                                         "RandomBytesStringZEL",
                                                         "IsASCIIStringZEL",
                                                         "ReplaceNonPrintableCharactersZEL",
                                                         "DetectUnicodeMarkersZEL",
                                                         "GetUnicodeMarkersZEL",
                                                         "UnicodeStringZEL",
                                                         "NativeStringZEL"};
constexpr std::array<std::string_view, 1> kSizeParameters = {"length"};
constexpr std::array kExceptions = {zeltest::kAllocationFailure};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
