#include "strings/unicode_text_adapters.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/host_text.h"
#include "framework/debug_log.h"
#include "framework/exceptions.h"
#include "strings/accent_map.h"
#include "strings/code_pages.h"
#include "strings/decomposition_table.h"
#include "strings/number_format.h"
#include "strings/string_distance.h"
#include "strings/unicode_composition.h"

namespace zel::adapters {
namespace {

REALstring decodeBytes(OnFailure policy, REALstring s, strings::CodePage page) noexcept {
  return guarded(policy, [&] {
    const HostStringBytes bytes(s);
    return buildString(strings::decodeCodePage(bytes.bytes(), page));
  });
}

REALstring encodeText(OnFailure policy, REALstring s, strings::CodePage page) noexcept {
  return guarded(policy, [&] {
    HostText text(s);
    return buildString(strings::encodeCodePage(text.utf16(), page), encoding::kNone);
  });
}

template <auto Distance>
double distanceBetween(OnFailure policy, REALstring a, REALstring b) noexcept {
  return guarded(policy, [&] {
    HostText first(a), second(b);
    return Distance(first.utf16(), second.utf16());
  });
}

class DebugLogTrace final : public strings::UnicodeTrace {
 public:
  void note(const char* label, std::int64_t value) override { debugLogInt64(label, value); }
  void note(const char* label, std::int64_t value, std::int64_t second) override {
    debugLogInt64Pair(label, value, second);
  }
};

using UnicodeConversion = std::u16string (*)(std::u16string_view, strings::UnicodeTrace*);

// Composition and decomposition share their shape; only composition reports the table size.
REALstring convertUnicode(OnFailure policy, REALstring text, const char* name,
                          UnicodeConversion convert, bool reportsTableSize) noexcept {
  if (text == nullptr) return nullptr;
  return guarded(policy, [&] {
    const bool tracing = debugEnabled();
    if (tracing) debugLogLabel(name);
    if (tracing && reportsTableSize) {
      debugLogInt64("count compositions",
                    static_cast<std::int64_t>(strings::decompositionTable.size()));
    }
    DebugLogTrace trace;
    HostText source(text);
    const std::u16string converted = convert(source.utf16(), tracing ? &trace : nullptr);
    if (tracing) debugLogInt64("outsize", static_cast<std::int64_t>(converted.size()));
    return buildString(converted);
  });
}

}  // namespace

REALstring EncodingToISO8859ZEL(REALstring s) noexcept {
  return encodeText(OnFailure::emptyIfOutOfMemory, s, strings::CodePage::Iso8859_1);
}

REALstring DecodingFromISO8859ZEL(REALstring s) noexcept {
  return decodeBytes(OnFailure::emptyIfOutOfMemory, s, strings::CodePage::Iso8859_1);
}

REALstring EncodingToCP1252ZEL(REALstring s) noexcept {
  return encodeText(OnFailure::emptyIfOutOfMemory, s, strings::CodePage::Windows1252);
}

REALstring DecodingFromCP1252ZEL(REALstring s) noexcept {
  return decodeBytes(OnFailure::emptyIfOutOfMemory, s, strings::CodePage::Windows1252);
}

REALstring StrZEL(double d) noexcept {
  return guarded(OnFailure::raise,
                 [&] { return buildString(strings::formatTrimmedFixed(d), encoding::kASCII); });
}

REALstring ScientificStrZEL(double d, RBInteger digits) noexcept {
  return guarded(OnFailure::raise, [&] {
    return buildString(strings::formatScientific(d, digits), encoding::kASCII);
  });
}

double LevenshteinDistanceZEL(REALstring a, REALstring b) noexcept {
  return distanceBetween<&strings::levenshteinDistance>(OnFailure::raise, a, b);
}

double JaroWinklerDistanceZEL(REALstring a, REALstring b) noexcept {
  return distanceBetween<&strings::jaroWinklerDistance>(OnFailure::raise, a, b);
}

REALstring ConvertUnicodeToCharacterCompositionZEL(REALstring text) noexcept {
  return convertUnicode(OnFailure::raise, text, "ConvertUnicodeToCharacterCompositionZEL",
                        &strings::composeCharacters, true);
}

REALstring ConvertUnicodeToCharacterDecompositionZEL(REALstring text) noexcept {
  return convertUnicode(OnFailure::raise, text, "ConvertUnicodeToCharacterDecompositionZEL",
                        &strings::decomposeCharacters, false);
}

REALstring RemoveAccentsZEL(REALstring text, RBBoolean ignoreCase) noexcept {
  if (text == nullptr) return nullptr;
  return guarded(OnFailure::raise, [&] {
    HostText source(text);
    return buildString(
        strings::removeAccents(source.utf16(), ignoreCase != 0, strings::builtAccentMap()));
  });
}

}  // namespace zel::adapters
