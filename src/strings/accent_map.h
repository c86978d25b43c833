// Accent removal: accented and look-alike characters reduced to plain base characters.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace zel::strings {

// One entry per UTF-16 unit: the unit it is reduced to.
using AccentMap = std::array<char16_t, 0x10000>;

// Fills the process-wide map once (start-up of a built application calls it); later calls and
// concurrent calls do nothing more.
void buildAccentMap();

// The process-wide map, or null while buildAccentMap has not run.
const AccentMap* builtAccentMap() noexcept;

// Drops combining diacritical marks (U+0300-U+036F), spells out AE, ae and the vulgar fractions
// in ASCII, and reduces every other unit through map. Without a map every such unit becomes
// U+0000, as the unfilled map holds. With ignoreCase, ASCII letters come out upper-cased.
std::u16string removeAccents(std::u16string_view text, bool ignoreCase, const AccentMap* map);

}  // namespace zel::strings
