// How far apart two texts are, measured on their UTF-16 code units (a character outside the
// Basic Multilingual Plane counts as two units).
#pragma once

#include <string_view>

namespace zel::strings {

// Optimal string alignment distance (adjacent transpositions count as one edit) divided by the
// shorter length; 0.0 for equal texts, 1.0 when either is empty, not capped at 1.
// Throws OutOfMemoryError when its scratch memory cannot be had.
double levenshteinDistance(std::u16string_view a, std::u16string_view b);

// 1 minus the Jaro-Winkler similarity (prefix scale 0.1, at most 4 prefix units, boost only
// above 0.7): 0.0 for two empty texts, 1.0 when exactly one is empty.
// Throws OutOfMemoryError when its scratch memory cannot be had.
double jaroWinklerDistance(std::u16string_view a, std::u16string_view b);

}  // namespace zel::strings
