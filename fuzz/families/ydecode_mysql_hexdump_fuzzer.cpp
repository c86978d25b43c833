// yEnc and MySQL decoding and the hex dump through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 4> kFunctions = {"_yDecodeMemoryZEL", "_yDecodeStringZEL",
                                                        "DecodingFromMySQLZEL", "HexstringZEL"};
constexpr std::array<std::string_view, 2> kSizeParameters = {"hexlen", "linelen"};
constexpr std::array kExceptions = {
    zelfuzz::kAllocationFailure,
    zelfuzz::DocumentedException{"OutOfMemoryException", "Failed to allocate a memoryblock with ",
                                 true}};
constexpr zelfuzz::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zelfuzz::loadPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return zelfuzz::fuzzFamily(kFamily, data, size);
}
