// Canonical composition and decomposition of UTF-16 text by one static table.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zel::strings {

// One row of decompositionTable: a BMP character and its full canonical decomposition as
// UTF-16 units, ended by the first 0 (at most four are used).
struct DecompositionEntry {
  char16_t composed;
  std::array<char16_t, 5> units;
};

// Receives the per-unit events of the debug log; pass none when the log is off.
class UnicodeTrace {
 public:
  virtual ~UnicodeTrace() = default;
  virtual void note(const char* label, std::int64_t value) = 0;
  virtual void note(const char* label, std::int64_t value, std::int64_t second) = 0;
};

// Replaces every sequence that is some row's decomposition by that row's character. At each
// position the first matching row in table order wins, not the longest: A U+0308 U+0304 gives
// U+00C4 U+0304. Throws OutOfMemoryError("Failed to allocate lookup table.") when the lookup
// table cannot be built; the next call tries again.
std::u16string composeCharacters(std::u16string_view text, UnicodeTrace* trace = nullptr);

// Replaces every unit that has a row by the row's decomposition, one unit at a time and without
// canonical reordering; units below U+00C0 are never touched.
std::u16string decomposeCharacters(std::u16string_view text, UnicodeTrace* trace = nullptr);

}  // namespace zel::strings
