// Doubles as text: a trimmed fixed-point form and a plain scientific form.
#pragma once

#include <cstdint>
#include <string>

namespace zel::strings {

// "%.99f", then trailing zeros trimmed to one, a cut after about 15 significant characters
// (truncating, never rounding), and every run of equal trailing characters shrunk to one.
std::string formatTrimmedFixed(double value);

// "%.<digits>e". Digits below 0 count as 0; the text is capped at 499 characters.
std::string formatScientific(double value, std::int64_t digits);

}  // namespace zel::strings
