// Host text encodings met in RTF, and the Windows code pages that "\ansicpg" may name.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text_encodings.h"

namespace zel::styledtext {

struct CodePageEncoding {
  std::int64_t codePage;
  std::uint32_t encoding;
};

// Sorted by code page for binary search.
inline constexpr std::array<CodePageEncoding, 32> kCodePageEncodings{{
    {437, 0x0400},   {850, 0x0410},   {852, 0x0412},   {860, 0x0415},   {862, 0x0417},
    {863, 0x0418},   {864, 0x0419},   {865, 0x041A},   {866, 0x041B},   {874, 0x041D},
    {932, 0x0420},   {936, 0x0421},   {949, 0x0422},   {950, 0x0423},   {1250, 0x0501},
    {1251, 0x0502},  {1252, 0x0500},  {1253, 0x0503},  {1254, 0x0504},  {1255, 0x0505},
    {1256, 0x0506},  {1257, 0x0507},  {1258, 0x0508},  {1361, 0x0510},  {10000, 0x0000},
    {10001, 0x0001}, {10004, 0x0004}, {10005, 0x0005}, {10006, 0x0006}, {10007, 0x0007},
    {10029, 0x001D}, {10081, 0x0023},
}};

static_assert(std::is_sorted(kCodePageEncodings.begin(), kCodePageEncodings.end(),
                             [](const CodePageEncoding& a, const CodePageEncoding& b) {
                               return a.codePage < b.codePage;
                             }));

// Unlisted code pages read as Windows Latin 1.
constexpr std::uint32_t encodingForCodePage(std::int64_t codePage) {
  const auto* entry = std::lower_bound(
      kCodePageEncodings.begin(), kCodePageEncodings.end(), codePage,
      [](const CodePageEncoding& e, std::int64_t page) { return e.codePage < page; });
  if (entry != kCodePageEncodings.end() && entry->codePage == codePage) return entry->encoding;
  return encoding::kWindowsLatin1;
}

}  // namespace zel::styledtext
