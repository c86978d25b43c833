// Registered functions over single-byte code pages, numbers as text, string distance and
// Unicode composition, decomposition and accent removal.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring EncodingToISO8859ZEL(REALstring s) noexcept;
REALstring DecodingFromISO8859ZEL(REALstring s) noexcept;
REALstring EncodingToCP1252ZEL(REALstring s) noexcept;
REALstring DecodingFromCP1252ZEL(REALstring s) noexcept;

REALstring StrZEL(double d) noexcept;
REALstring ScientificStrZEL(double d, RBInteger digits) noexcept;
double LevenshteinDistanceZEL(REALstring a, REALstring b) noexcept;
double JaroWinklerDistanceZEL(REALstring a, REALstring b) noexcept;

REALstring ConvertUnicodeToCharacterCompositionZEL(REALstring text) noexcept;
REALstring ConvertUnicodeToCharacterDecompositionZEL(REALstring text) noexcept;
REALstring RemoveAccentsZEL(REALstring text, RBBoolean ignoreCase) noexcept;

}  // namespace zel::adapters
