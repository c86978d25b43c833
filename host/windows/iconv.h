// The part of iconv that the stand-in host uses (single-byte code pages to UTF-32LE, one byte at a
// time), for Windows, which has no iconv: the system's own code-page tables decode the byte.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>

using iconv_t = void*;

namespace zelhost::windows_iconv {

struct CodePageName {
  const char* name;
  UINT codePage;
};
inline constexpr UINT kAscii = 20127;
inline constexpr UINT kWindowsLatin1 = 1252;
inline constexpr CodePageName kCodePages[] = {
    {"ASCII", kAscii}, {"ISO-8859-1", 28591}, {"CP1252", kWindowsLatin1}, {"MACINTOSH", 10000}};

// The code page is the handle; bit 31 keeps a valid handle from ever being null.
inline constexpr std::uintptr_t kHandleMark = 0x80000000U;

}  // namespace zelhost::windows_iconv

inline iconv_t iconv_open(const char* to, const char* from) {
  using namespace zelhost::windows_iconv;
  if (std::strcmp(to, "UTF-32LE") == 0) {
    for (const CodePageName& page : kCodePages)
      if (std::strcmp(page.name, from) == 0)
        return reinterpret_cast<iconv_t>(kHandleMark | page.codePage);
  }
  errno = EINVAL;
  return reinterpret_cast<iconv_t>(-1);
}

inline std::size_t iconv(iconv_t converter, char** in, std::size_t* inLeft, char** out,
                         std::size_t* outLeft) {
  constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
  if (in == nullptr || *in == nullptr) return 0;  // reset: no shift state here
  const auto codePage = static_cast<UINT>(reinterpret_cast<std::uintptr_t>(converter) &
                                          ~zelhost::windows_iconv::kHandleMark);
  using namespace zelhost::windows_iconv;
  while (*inLeft > 0) {
    wchar_t unit = 0;
    const auto byte = static_cast<unsigned char>(**in);
    // Windows passes these bytes through where glibc's tables leave them undefined: ASCII above
    // 127, and the five holes of code page 1252 that would decode to C1 controls.
    const bool undefined =
        (codePage == kAscii && byte > 0x7F) ||
        (MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, *in, 1, &unit, 1) != 1) ||
        (codePage == kWindowsLatin1 && unit >= 0x80 && unit <= 0x9F);
    if (undefined) {
      errno = EILSEQ;
      return kFailed;
    }
    if (*outLeft < 4) {
      errno = E2BIG;
      return kFailed;
    }
    const auto value = static_cast<std::uint32_t>(unit);
    for (int shift = 0; shift < 32; shift += 8) *(*out)++ = static_cast<char>(value >> shift);
    *outLeft -= 4;
    ++*in;
    --*inLeft;
  }
  return 0;
}

inline int iconv_close(iconv_t) {
  return 0;
}
