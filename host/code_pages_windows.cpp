#include <windows.h>

#include <array>

#include "code_pages.h"
#include "text/surrogates.h"

namespace zelhost::detail {
namespace {

using zel::text::isHighSurrogate;
using zel::text::isLowSurrogate;
using zel::text::kReplacementCharacter;

std::u32string fromUtf16(std::wstring_view units) {
  std::u32string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
      out.push_back(zel::text::combineSurrogates(unit, units[++i]));
    } else {
      out.push_back(zel::text::isSurrogate(unit) ? kReplacementCharacter : unit);
    }
  }
  return out;
}

std::wstring toUtf16(std::u32string_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (const char32_t c : text) {
    if (c >= zel::text::kFirstSupplementary) {
      out.push_back(static_cast<wchar_t>(zel::text::highSurrogateOf(c)));
      out.push_back(static_cast<wchar_t>(zel::text::lowSurrogateOf(c)));
    } else {
      out.push_back(static_cast<wchar_t>(c));
    }
  }
  return out;
}

}  // namespace

bool platformConverts(const CodePage& page) {
  return IsValidCodePage(page.windowsCodePage) != 0;
}

// One character at a time, so that the results match the other platforms': an invalid or cut-off
// sequence is one U+FFFD and reading resumes at its second byte; a byte the page leaves undefined
// (one that does not come back from the page unchanged) is U+FFFD too.
std::u32string platformDecode(std::string_view bytes, const CodePage& page) {
  std::u32string out;
  out.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const auto lead = static_cast<BYTE>(bytes[at]);
    const std::size_t length =
        !page.singleByte && IsDBCSLeadByteEx(page.windowsCodePage, lead) ? 2 : 1;
    std::array<wchar_t, 2> units{};
    int count = 0;
    if (at + length <= bytes.size()) {
      count = MultiByteToWideChar(page.windowsCodePage, MB_ERR_INVALID_CHARS, bytes.data() + at,
                                  static_cast<int>(length), units.data(),
                                  static_cast<int>(units.size()));
    }
    const std::u32string decoded = fromUtf16({units.data(), static_cast<std::size_t>(count)});
    if (count == 0 || platformEncode(decoded, page) != bytes.substr(at, length)) {
      out.push_back(kReplacementCharacter);
      ++at;
      continue;
    }
    out += decoded;
    at += length;
  }
  return out;
}

// No best-fit mapping: a character the page lacks becomes one '?', not a look-alike, also when
// it takes two UTF-16 units.
std::string platformEncode(std::u32string_view text, const CodePage& page) {
  constexpr char kFallback = '?';
  std::string out;
  out.reserve(text.size());
  std::array<char, 4> bytes{};
  for (const char32_t c : text) {
    const std::wstring wide = toUtf16({&c, 1});
    BOOL usedFallback = FALSE;
    const int size = WideCharToMultiByte(page.windowsCodePage, WC_NO_BEST_FIT_CHARS, wide.data(),
                                         static_cast<int>(wide.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), &kFallback, &usedFallback);
    if (size <= 0 || usedFallback) {
      out.push_back(kFallback);
    } else {
      out.append(bytes.data(), static_cast<std::size_t>(size));
    }
  }
  return out;
}

}  // namespace zelhost::detail
