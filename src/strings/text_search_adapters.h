// Registered functions that search, compare and rewrite text: prefix and suffix tests, whole
// words, occurrence counts, character comparison and line endings.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

RBBoolean HasPrefixZEL(REALstring text, REALstring prefix) noexcept;
RBBoolean HasPostfixZEL(REALstring text, REALstring prefix) noexcept;
RBBoolean ContainsWholeWordZEL(REALstring text, REALstring word) noexcept;
RBInteger CountOccurancesZEL(REALstring s, REALstring find) noexcept;
RBInteger StrCompCharactersZEL(REALstring a, REALstring b) noexcept;
REALstring ReplaceLineEndingsZEL(REALstring text, REALstring newLine, RBBoolean yield) noexcept;

}  // namespace zel::adapters
