// Decomposition expands every character that has a row and leaves no such character behind, and
// composition only ever replaces a row's exact sequence by the row's character. So a decomposed
// text decomposes to itself, and composing it and decomposing again gives it back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "strings/unicode_composition.h"

namespace {

void check(bool holds, const char* what, std::size_t units) {
  if (holds) return;
  std::fprintf(stderr, "FUZZ FINDING: %s (input of %zu units)\n", what, units);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string text(size / sizeof(char16_t), u'\0');
  std::memcpy(text.data(), data, text.size() * sizeof(char16_t));

  const std::u16string decomposed = zel::strings::decomposeCharacters(text);
  check(zel::strings::decomposeCharacters(decomposed) == decomposed,
        "a decomposed text decomposes further", text.size());
  const std::u16string composed = zel::strings::composeCharacters(decomposed);
  check(composed.size() <= decomposed.size(), "composition made the text longer", text.size());
  check(zel::strings::decomposeCharacters(composed) == decomposed,
        "composing a decomposed text does not decompose back to it", text.size());
  return 0;
}
