// yEnc and MySQL decoding and the hex dump through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 4> kFunctions = {"_yDecodeMemoryZEL", "_yDecodeStringZEL",
                                                        "DecodingFromMySQLZEL", "HexstringZEL"};
constexpr std::array<std::string_view, 2> kSizeParameters = {"hexlen", "linelen"};
constexpr std::array kExceptions = {
    zeltest::kAllocationFailure,
    zeltest::DocumentedException{"OutOfMemoryException", "Failed to allocate a memoryblock with ",
                                 true}};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
