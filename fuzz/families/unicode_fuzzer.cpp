// Unicode composition, decomposition and accent removal through the host.
#include <array>
#include <string_view>

#include "support/family_fuzzer.h"

namespace {

constexpr std::array<std::string_view, 3> kFunctions = {"ConvertUnicodeToCharacterCompositionZEL",
                                                        "ConvertUnicodeToCharacterDecompositionZEL",
                                                        "RemoveAccentsZEL"};
constexpr std::array<std::string_view, 0> kSizeParameters = {};
constexpr std::array kExceptions = {
    zelfuzz::kAllocationFailure,
    zelfuzz::DocumentedException{"OutOfMemoryException", "Failed to allocate lookup table."},
    zelfuzz::DocumentedException{"RuntimeException", "C++ Exception: ", true}};
constexpr zelfuzz::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
