// The host's text encoding numbers. Plain numbers without any host type, so kernels that meet
// encodings (RTF code pages, for one) share them with the host-facing code.
#pragma once

#include <cstdint>

namespace encoding {
inline constexpr std::uint32_t kMacRoman = 0x0;
inline constexpr std::uint32_t kUTF16 = 0x100;
inline constexpr std::uint32_t kISOLatin1 = 0x201;
inline constexpr std::uint32_t kWindowsLatin1 = 0x500;
inline constexpr std::uint32_t kASCII = 0x600;
inline constexpr std::uint32_t kUTF8 = 0x08000100;
inline constexpr std::uint32_t kUTF32 = 0x0C000100;
inline constexpr std::uint32_t kUTF16BE = 0x10000100;
inline constexpr std::uint32_t kUTF16LE = 0x14000100;
inline constexpr std::uint32_t kUTF32BE = 0x18000100;
inline constexpr std::uint32_t kUTF32LE = 0x1C000100;
inline constexpr std::uint32_t kNone = 0xFFFF;
}  // namespace encoding
