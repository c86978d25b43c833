// The composition root: every registered function, in registration order.
#include <algorithm>
#include <span>

#include "framework/definitions.h"
#include "strings/accent_map.h"
#include "strings/unicode_text_adapters.h"

namespace zel {
namespace {

template <auto Function>
constexpr REALmethodDefinition row(const char* declaration) {
  return {reinterpret_cast<REALproc>(Function), nullptr, declaration, flags::kConsoleSafe, 0, nullptr};
}

constexpr std::size_t kGlobalMethodCount = 72;

// Flag adjustment rewrites the flags in place at start-up, so the table is not const. Rows are
// listed in registration order, each with its number as a trailing comment.
REALmethodDefinition gGlobalMethods[kGlobalMethodCount] = {
    row<&adapters::JaroWinklerDistanceZEL>("JaroWinklerDistanceZEL(a as string, b as string) as double"),  // 14
    row<&adapters::LevenshteinDistanceZEL>("LevenshteinDistanceZEL(a as string, b as string) as double"),  // 15
    row<&adapters::ScientificStrZEL>("ScientificStrZEL(d as double, digits as integer) as string"),  // 16
    row<&adapters::StrZEL>("StrZEL(d as double) as string"),  // 17
    row<&adapters::EncodingToISO8859ZEL>("EncodingToISO8859ZEL(s as string) as string"),  // 46
    row<&adapters::DecodingFromISO8859ZEL>("DecodingFromISO8859ZEL(s as string) as string"),  // 47
    row<&adapters::EncodingToCP1252ZEL>("EncodingToCP1252ZEL(s as string) as string"),  // 48
    row<&adapters::DecodingFromCP1252ZEL>("DecodingFromCP1252ZEL(s as string) as string"),  // 49
    row<&adapters::ConvertUnicodeToCharacterCompositionZEL>("ConvertUnicodeToCharacterCompositionZEL(text as string) as string"),  // 70
    row<&adapters::ConvertUnicodeToCharacterDecompositionZEL>("ConvertUnicodeToCharacterDecompositionZEL(text as string) as string"),  // 71
    row<&adapters::RemoveAccentsZEL>("RemoveAccentsZEL(text as string, IgnoreCase as boolean = false) as string"),  // 72
};

std::span<REALmethodDefinition> listedRows() noexcept {
  const auto end = std::find_if(std::begin(gGlobalMethods), std::end(gGlobalMethods),
                                [](const REALmethodDefinition& r) { return r.declaration == nullptr; });
  return {std::begin(gGlobalMethods), end};
}

}  // namespace

PluginDefinitions pluginDefinitions() noexcept {
  return {nullptr, listedRows(), &strings::buildAccentMap};
}

}  // namespace zel
