#include "encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <mutex>

#include "code_pages.h"
#include "sdk/host_types.h"

namespace zelhost::detail {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

enum class Form { Utf8, Utf16LE, Utf16BE, Utf32LE, Utf32BE, CodePage, None };

// The host's native byte order is little-endian.
Form formOf(std::uint32_t encoding) {
  switch (encoding) {
    case encoding::kUTF8:
      return Form::Utf8;
    case encoding::kUTF16:
    case encoding::kUTF16LE:
      return Form::Utf16LE;
    case encoding::kUTF16BE:
      return Form::Utf16BE;
    case encoding::kUTF32:
    case encoding::kUTF32LE:
      return Form::Utf32LE;
    case encoding::kUTF32BE:
      return Form::Utf32BE;
    case encoding::kNone:
      return Form::CodePage;
    default:
      return findCodePage(encoding) ? Form::CodePage : Form::None;
  }
}

// What the platform converter makes of one code page, learnt once. A single-byte page is kept
// as 256 code points (U+FFFD where the page defines nothing) and its inverse, first byte first.
struct LoadedPage {
  const CodePage* page = nullptr;
  bool converts = false;
  std::array<char32_t, 256> toUnicode{};
  std::map<char32_t, unsigned char> fromUnicode;
};

char32_t byteToUnicode(const CodePage& page, unsigned byte) {
  if (page.upperHalf != nullptr) {
    return byte < kUpperHalfStart ? byte : (*page.upperHalf)[byte - kUpperHalfStart];
  }
  const std::u32string text = platformDecode(std::string(1, static_cast<char>(byte)), page);
  return text.size() == 1 ? text.front() : kReplacement;
}

LoadedPage loadPage(const CodePage& page) {
  LoadedPage loaded{&page, page.upperHalf != nullptr || platformConverts(page), {}, {}};
  if (!loaded.converts || !page.singleByte) return loaded;
  for (unsigned byte = 0; byte < loaded.toUnicode.size(); ++byte) {
    loaded.toUnicode[byte] = byteToUnicode(page, byte);
  }
  for (const ByteOverride& change : page.overrides)
    loaded.toUnicode[change.byte] = change.codePoint;
  for (unsigned byte = 0; byte < loaded.toUnicode.size(); ++byte) {
    if (loaded.toUnicode[byte] != kReplacement) {
      loaded.fromUnicode.emplace(loaded.toUnicode[byte], static_cast<unsigned char>(byte));
    }
  }
  return loaded;
}

// No encoding reads as Windows Latin 1.
const LoadedPage& loadedPage(std::uint32_t encoding) {
  static std::mutex guard;
  static std::map<std::uint32_t, LoadedPage> pages;
  const CodePage& page =
      *findCodePage(encoding == encoding::kNone ? encoding::kWindowsLatin1 : encoding);
  const std::lock_guard lock(guard);
  auto found = pages.find(page.hostEncoding);
  if (found == pages.end()) found = pages.emplace(page.hostEncoding, loadPage(page)).first;
  return found->second;
}

std::u32string decodeCodePage(std::string_view bytes, const LoadedPage& loaded) {
  if (!loaded.page->singleByte) return platformDecode(bytes, *loaded.page);
  std::u32string out;
  out.reserve(bytes.size());
  for (const char byte : bytes) out.push_back(loaded.toUnicode[static_cast<unsigned char>(byte)]);
  return out;
}

std::string encodeCodePage(std::u32string_view text, const LoadedPage& loaded) {
  if (!loaded.page->singleByte) return platformEncode(text, *loaded.page);
  std::string out;
  out.reserve(text.size());
  for (const char32_t c : text) {
    const auto found = loaded.fromUnicode.find(c);
    out.push_back(found == loaded.fromUnicode.end() ? '?' : static_cast<char>(found->second));
  }
  return out;
}

bool isScalar(char32_t c) {
  return c < 0xD800 || (c > 0xDFFF && c <= 0x10FFFF);
}

// Each maximal ill-formed subpart becomes one U+FFFD.
void decodeUtf8(std::string_view bytes, std::u32string& out) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  std::size_t i = 0;
  while (i < bytes.size()) {
    const unsigned lead = byteAt(i);
    if (lead < 0x80) {
      out.push_back(lead);
      ++i;
      continue;
    }
    std::size_t trailing = 0;
    unsigned low = 0x80;
    unsigned high = 0xBF;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
      trailing = 1;
      value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      trailing = 2;
      value = lead & 0x0F;
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      trailing = 3;
      value = lead & 0x07;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    } else {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    std::size_t taken = 1;
    bool complete = true;
    for (; taken <= trailing; ++taken) {
      if (i + taken >= bytes.size()) {
        complete = false;
        break;
      }
      const unsigned next = byteAt(i + taken);
      const unsigned allowedLow = taken == 1 ? low : 0x80;
      const unsigned allowedHigh = taken == 1 ? high : 0xBF;
      if (next < allowedLow || next > allowedHigh) {
        complete = false;
        break;
      }
      value = value << 6 | (next & 0x3F);
    }
    out.push_back(complete ? value : kReplacement);
    i += taken;
  }
}

unsigned unitAt(std::string_view bytes, std::size_t offset, std::size_t width, bool bigEndian) {
  unsigned value = 0;
  for (std::size_t k = 0; k < width; ++k) {
    const unsigned byte = static_cast<unsigned char>(bytes[offset + k]);
    value |= byte << (8 * (bigEndian ? width - 1 - k : k));
  }
  return value;
}

void decodeUtf16(std::string_view bytes, bool bigEndian, std::u32string& out) {
  const std::size_t units = bytes.size() / 2;
  for (std::size_t i = 0; i < units; ++i) {
    const char32_t unit = unitAt(bytes, 2 * i, 2, bigEndian);
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units) {
      const char32_t next = unitAt(bytes, 2 * (i + 1), 2, bigEndian);
      if (next >= 0xDC00 && next <= 0xDFFF) {
        out.push_back(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
        ++i;
        continue;
      }
    }
    out.push_back(unit >= 0xD800 && unit <= 0xDFFF ? kReplacement : unit);
  }
  if (bytes.size() % 2 != 0) out.push_back(kReplacement);
}

void decodeUtf32(std::string_view bytes, bool bigEndian, std::u32string& out) {
  const std::size_t units = bytes.size() / 4;
  for (std::size_t i = 0; i < units; ++i) {
    const char32_t value = unitAt(bytes, 4 * i, 4, bigEndian);
    out.push_back(isScalar(value) ? value : kReplacement);
  }
  if (bytes.size() % 4 != 0) out.push_back(kReplacement);
}

void appendUnit(std::string& out, char32_t unit, std::size_t width, bool bigEndian) {
  for (std::size_t k = 0; k < width; ++k) {
    const std::size_t shift = 8 * (bigEndian ? width - 1 - k : k);
    out.push_back(static_cast<char>((unit >> shift) & 0xFF));
  }
}

}  // namespace

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | c >> 6));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | c >> 12));
    out.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | c >> 18));
    out.push_back(static_cast<char>(0x80 | (c >> 12 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

bool isConvertible(std::uint32_t encoding) {
  const Form form = formOf(encoding);
  return form != Form::None && (form != Form::CodePage || loadedPage(encoding).converts);
}

std::u32string decodeText(std::string_view bytes, std::uint32_t encoding) {
  std::u32string out;
  out.reserve(bytes.size());
  switch (formOf(encoding)) {
    case Form::Utf8:
      decodeUtf8(bytes, out);
      break;
    case Form::Utf16LE:
      decodeUtf16(bytes, false, out);
      break;
    case Form::Utf16BE:
      decodeUtf16(bytes, true, out);
      break;
    case Form::Utf32LE:
      decodeUtf32(bytes, false, out);
      break;
    case Form::Utf32BE:
      decodeUtf32(bytes, true, out);
      break;
    case Form::CodePage:
      out = decodeCodePage(bytes, loadedPage(encoding));
      break;
    case Form::None:
      break;
  }
  return out;
}

std::string encodeText(std::u32string_view text, std::uint32_t encoding) {
  const Form form = formOf(encoding);
  if (form == Form::CodePage) return encodeCodePage(text, loadedPage(encoding));
  std::string out;
  out.reserve(text.size());
  for (const char32_t c : text) {
    switch (form) {
      case Form::Utf8:
        appendUtf8(out, c);
        break;
      case Form::Utf16LE:
      case Form::Utf16BE:
        if (c >= 0x10000) {
          appendUnit(out, 0xD800 + ((c - 0x10000) >> 10), 2, form == Form::Utf16BE);
          appendUnit(out, 0xDC00 + ((c - 0x10000) & 0x3FF), 2, form == Form::Utf16BE);
        } else {
          appendUnit(out, c, 2, form == Form::Utf16BE);
        }
        break;
      case Form::Utf32LE:
      case Form::Utf32BE:
        appendUnit(out, c, 4, form == Form::Utf32BE);
        break;
      case Form::CodePage:
      case Form::None:
        break;
    }
  }
  return out;
}

std::optional<std::string> convertBytes(std::string_view bytes, std::uint32_t from,
                                        std::uint32_t to) {
  if (!isConvertible(from) || !isConvertible(to)) return std::nullopt;
  if (to == encoding::kNone || from == to) return std::string(bytes);
  return encodeText(decodeText(bytes, from), to);
}

bool isValidIn(std::string_view bytes, std::uint32_t encoding) {
  if (encoding == encoding::kNone) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
  }
  if (!isConvertible(encoding)) return false;
  const std::u32string text = decodeText(bytes, encoding);
  if (std::find(text.begin(), text.end(), kReplacement) == text.end()) return true;
  // A genuine U+FFFD in the source is valid; only replacements made while reading are not.
  return encodeText(text, encoding) == bytes;
}

std::string encodingName(std::uint32_t encoding) {
  switch (encoding) {
    case encoding::kMacRoman:
      return "Mac Roman";
    case encoding::kUTF16:
      return "UTF-16";
    case encoding::kISOLatin1:
      return "ISO Latin 1";
    case encoding::kWindowsLatin1:
      return "Windows Latin 1";
    case encoding::kASCII:
      return "ASCII";
    case encoding::kUTF8:
      return "UTF-8";
    case encoding::kUTF32:
      return "UTF-32";
    case encoding::kUTF16BE:
      return "UTF-16BE";
    case encoding::kUTF16LE:
      return "UTF-16LE";
    case encoding::kUTF32BE:
      return "UTF-32BE";
    case encoding::kUTF32LE:
      return "UTF-32LE";
    case encoding::kNone:
      return "no encoding";
    default: {
      std::array<char, 16> text{};
      std::snprintf(text.data(), text.size(), "0x%X", encoding);
      return text.data();
    }
  }
}

}  // namespace zelhost::detail
