#include "code_pages.h"

#include <algorithm>
#include <array>

#include "mac_code_page_tables.h"
#include "sdk/host_types.h"

namespace zelhost::detail {
namespace {

// glibc's MACINTOSH predates Apple's current Mac Roman table.
constexpr std::array kMacRomanOverrides{
    ByteOverride{0xC6, U'\u2206'},  // increment, not Greek capital delta
    ByteOverride{0xDB, U'\u20AC'},  // euro sign, not the generic currency sign
    ByteOverride{0xF0, U'\uF8FF'},  // Apple logo, Apple's private-use code point
};

// Mac Turkish is Mac Roman with these bytes changed.
constexpr std::array kMacTurkishOverrides{
    ByteOverride{0xC6, U'\u2206'}, ByteOverride{0xF0, U'\uF8FF'}, ByteOverride{0xDA, U'\u011E'},
    ByteOverride{0xDB, U'\u011F'}, ByteOverride{0xDC, U'\u0130'}, ByteOverride{0xDD, U'\u0131'},
    ByteOverride{0xDE, U'\u015E'}, ByteOverride{0xDF, U'\u015F'}, ByteOverride{0xF5, U'\uF8A0'},
};

constexpr std::span<const ByteOverride> kNoOverrides;

// glibc has no Mac Arabic, Mac Hebrew or Mac Greek converter, so these three come from our own
// tables on every platform. Mac Japanese is read as Shift_JIS, without Apple's single-byte
// additions.
constexpr std::array kCodePages{
    CodePage{encoding::kASCII, 20127, "ASCII", true, kNoOverrides},
    CodePage{encoding::kISOLatin1, 28591, "ISO-8859-1", true, kNoOverrides},
    CodePage{0x0400, 437, "CP437", true, kNoOverrides},
    CodePage{0x0410, 850, "CP850", true, kNoOverrides},
    CodePage{0x0412, 852, "CP852", true, kNoOverrides},
    CodePage{0x0415, 860, "CP860", true, kNoOverrides},
    CodePage{0x0417, 862, "CP862", true, kNoOverrides},
    CodePage{0x0418, 863, "CP863", true, kNoOverrides},
    CodePage{0x0419, 864, "CP864", true, kNoOverrides},
    CodePage{0x041A, 865, "CP865", true, kNoOverrides},
    CodePage{0x041B, 866, "CP866", true, kNoOverrides},
    CodePage{0x041D, 874, "CP874", true, kNoOverrides},
    CodePage{0x0420, 932, "CP932", false, kNoOverrides},
    CodePage{0x0421, 936, "CP936", false, kNoOverrides},
    CodePage{0x0422, 949, "CP949", false, kNoOverrides},
    CodePage{0x0423, 950, "CP950", false, kNoOverrides},
    CodePage{encoding::kWindowsLatin1, 1252, "CP1252", true, kNoOverrides},
    CodePage{0x0501, 1250, "CP1250", true, kNoOverrides},
    CodePage{0x0502, 1251, "CP1251", true, kNoOverrides},
    CodePage{0x0503, 1253, "CP1253", true, kNoOverrides},
    CodePage{0x0504, 1254, "CP1254", true, kNoOverrides},
    CodePage{0x0505, 1255, "CP1255", true, kNoOverrides},
    CodePage{0x0506, 1256, "CP1256", true, kNoOverrides},
    CodePage{0x0507, 1257, "CP1257", true, kNoOverrides},
    CodePage{0x0508, 1258, "CP1258", true, kNoOverrides},
    CodePage{0x0510, 1361, "CP1361", false, kNoOverrides},
    CodePage{encoding::kMacRoman, 10000, "MACINTOSH", true, kMacRomanOverrides},
    CodePage{0x0001, 10001, "SHIFT_JIS", false, kNoOverrides},
    CodePage{0x0004, 10004, nullptr, true, kNoOverrides, &kMacArabicUpperHalf},
    CodePage{0x0005, 10005, nullptr, true, kNoOverrides, &kMacHebrewUpperHalf},
    CodePage{0x0006, 10006, nullptr, true, kNoOverrides, &kMacGreekUpperHalf},
    CodePage{0x0007, 10007, "MAC-CYRILLIC", true, kNoOverrides},
    CodePage{0x001D, 10029, "MAC-CENTRALEUROPE", true, kNoOverrides},
    CodePage{0x0023, 10081, "MACINTOSH", true, kMacTurkishOverrides},
};

}  // namespace

const CodePage* findCodePage(std::uint32_t encoding) {
  const auto found = std::find_if(kCodePages.begin(), kCodePages.end(), [&](const CodePage& page) {
    return page.hostEncoding == encoding;
  });
  return found == kCodePages.end() ? nullptr : &*found;
}

}  // namespace zelhost::detail
