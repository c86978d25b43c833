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
    zeltest::kAllocationFailure,
    zeltest::DocumentedException{"OutOfMemoryException", "Failed to allocate lookup table."},
    zeltest::DocumentedException{"RuntimeException", "C++ Exception: ", true}};
constexpr zeltest::Family kFamily{kFunctions, kSizeParameters, kExceptions};

}  // namespace

ZEL_FAMILY_FUZZER(kFamily)
