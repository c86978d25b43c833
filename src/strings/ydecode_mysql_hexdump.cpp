#include "strings/ydecode_mysql_hexdump.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <new>

#include "strings/transfer_encodings.h"

namespace zel::strings {

namespace {

constexpr unsigned char byteOf(char c) {
  return static_cast<unsigned char>(c);
}

constexpr int kNoEscape = -1;

// The byte a backslash escape stands for; kNoEscape where both characters are kept.
constexpr std::array<int, 256> kMySqlEscapes = [] {
  std::array<int, 256> escapes{};
  escapes.fill(kNoEscape);
  escapes['0'] = 0;
  escapes['\''] = '\'';
  escapes['"'] = '"';
  escapes['b'] = 8;
  escapes['n'] = 10;
  escapes['r'] = 13;
  escapes['t'] = 9;
  escapes['Z'] = 26;
  escapes['\\'] = '\\';
  escapes['%'] = '%';
  escapes['_'] = '_';
  return escapes;
}();

// Sizes that do not fit are memory that cannot be had.
std::uint64_t sizeProduct(std::uint64_t a, std::uint64_t b) {
  if (b != 0 && a > std::numeric_limits<std::uint64_t>::max() / b) throw std::bad_alloc();
  return a * b;
}

std::uint64_t sizeSum(std::uint64_t a, std::uint64_t b) {
  if (a > std::numeric_limits<std::uint64_t>::max() - b) throw std::bad_alloc();
  return a + b;
}

std::size_t toSize(std::uint64_t size) {
  if (size > std::string().max_size()) throw std::bad_alloc();
  return static_cast<std::size_t>(size);
}

}  // namespace

std::string yDecode(std::string_view body) {
  std::string out(body.size(), '\0');
  char* cursor = out.data();
  for (std::size_t i = 0; i < body.size(); ++i) {
    unsigned value = byteOf(body[i]);
    if (body[i] == '=') {
      ++i;
      value = (i < body.size() ? byteOf(body[i]) : 0U) - 64;
    }
    *cursor++ = static_cast<char>(value - 42);
  }
  out.resize(static_cast<std::size_t>(cursor - out.data()));
  return out;
}

std::string decodeMySqlEscapes(std::string_view bytes) {
  std::string out(bytes.size() + 1, '\0');
  char* cursor = out.data();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c != '\\') {
      *cursor++ = c;
    } else if (i + 1 == bytes.size()) {
      // The zero byte stands in for the character a final escape lacks.
      *cursor++ = '\\';
      *cursor++ = '\0';
    } else {
      const char escaped = bytes[++i];
      const int meaning = kMySqlEscapes[byteOf(escaped)];
      if (meaning == kNoEscape) {
        *cursor++ = '\\';
        *cursor++ = escaped;
      } else {
        *cursor++ = static_cast<char>(meaning);
      }
    }
  }
  out.resize(static_cast<std::size_t>(cursor - out.data()));
  return out;
}

std::string hexDump(std::string_view bytes, const HexDumpLayout& layout) {
  if (layout.groupDigits < 1 || layout.groupsPerLine < 1 || bytes.empty()) return {};
  const auto groupDigits = static_cast<std::uint64_t>(layout.groupDigits);
  const auto groups = static_cast<std::uint64_t>(layout.groupsPerLine);
  const std::uint64_t lineDigits = sizeProduct(groupDigits, groups);
  const std::uint64_t lineLength =
      sizeSum(sizeSum(lineDigits, sizeProduct(groups - 1, layout.spacer.size())),
              sizeSum(layout.lineStart.size(), layout.lineEnd.size()));

  std::string digits = encodeHex(bytes);
  const std::uint64_t lines =
      digits.size() / lineDigits + (digits.size() % lineDigits != 0 ? 1 : 0);
  std::string out;
  out.reserve(toSize(sizeProduct(lines, lineLength)));

  // The last line reads on into copies of the filler.
  const std::string_view filler = layout.filler.empty() ? "0" : layout.filler;
  const std::size_t paddedDigits = toSize(lines * lineDigits);
  digits.reserve(paddedDigits);
  while (digits.size() < paddedDigits) {
    digits += filler.substr(0, paddedDigits - digits.size());
  }

  std::string_view unread = digits;
  while (!unread.empty()) {
    out += layout.lineStart;
    for (std::uint64_t group = 0; group < groups; ++group) {
      if (group != 0) out += layout.spacer;
      out += unread.substr(0, groupDigits);
      unread.remove_prefix(groupDigits);
    }
    out += layout.lineEnd;
  }
  return out;
}

}  // namespace zel::strings
