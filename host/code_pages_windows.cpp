#include <windows.h>

#include "code_pages.h"

namespace zelhost::detail {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kHighSurrogate = 0xD800;
constexpr char32_t kLowSurrogate = 0xDC00;
constexpr char32_t kSurrogateBits = 0x3FF;
constexpr unsigned kSurrogateShift = 10;

bool isHigh(char32_t unit) {
  return unit >= kHighSurrogate && unit < kLowSurrogate;
}
bool isLow(char32_t unit) {
  return unit >= kLowSurrogate && unit <= kLowSurrogate + kSurrogateBits;
}

std::u32string fromUtf16(std::wstring_view units) {
  std::u32string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    if (isHigh(unit) && i + 1 < units.size() && isLow(units[i + 1])) {
      out.push_back(kFirstSupplementary + ((unit - kHighSurrogate) << kSurrogateShift) +
                    (units[++i] - kLowSurrogate));
    } else {
      out.push_back(isHigh(unit) || isLow(unit) ? kReplacement : unit);
    }
  }
  return out;
}

std::wstring toUtf16(std::u32string_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (const char32_t c : text) {
    if (c >= kFirstSupplementary) {
      out.push_back(
          static_cast<wchar_t>(kHighSurrogate + ((c - kFirstSupplementary) >> kSurrogateShift)));
      out.push_back(
          static_cast<wchar_t>(kLowSurrogate + ((c - kFirstSupplementary) & kSurrogateBits)));
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

// Windows itself writes U+FFFD (or the page's own default) for bytes it cannot read.
std::u32string platformDecode(std::string_view bytes, const CodePage& page) {
  if (bytes.empty()) return {};
  const int size = static_cast<int>(bytes.size());
  const int units = MultiByteToWideChar(page.windowsCodePage, 0, bytes.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  MultiByteToWideChar(page.windowsCodePage, 0, bytes.data(), size, wide.data(), units);
  return fromUtf16(wide);
}

// No best-fit mapping: a character the page lacks becomes '?', not a look-alike.
std::string platformEncode(std::u32string_view text, const CodePage& page) {
  const std::wstring wide = toUtf16(text);
  if (wide.empty()) return {};
  const int units = static_cast<int>(wide.size());
  const char fallback[] = "?";
  const int size = WideCharToMultiByte(page.windowsCodePage, WC_NO_BEST_FIT_CHARS, wide.data(),
                                       units, nullptr, 0, fallback, nullptr);
  std::string out(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(page.windowsCodePage, WC_NO_BEST_FIT_CHARS, wide.data(), units, out.data(),
                      size, fallback, nullptr);
  return out;
}

}  // namespace zelhost::detail
