#include "strings/transfer_encodings.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "strings/transfer_encoding_tables.h"
#include "text/hex_codec.h"

namespace zel::strings {

namespace {

using tables::hexValueOrZero;

constexpr unsigned char byteOf(char c) {
  return static_cast<unsigned char>(c);
}

char* writeHexPair(char* out, char c) {
  std::memcpy(out, tables::kHexPairs[byteOf(c)].data(), 2);
  return out + 2;
}

constexpr bool isLineBreak(char c) {
  return c == '\r' || c == '\n';
}

// CR LF and LF CR are one break; CR CR and LF LF are two.
std::size_t lineBreakLength(std::string_view bytes, std::size_t at) {
  const bool paired =
      at + 1 < bytes.size() && isLineBreak(bytes[at + 1]) && bytes[at + 1] != bytes[at];
  return paired ? 2 : 1;
}

// Writes through a cursor into a buffer that grows on demand; the hot path is a few compares.
class QuotedPrintableWriter {
 public:
  // Room for the soft breaks and escapes of a typical text before the buffer first grows.
  static constexpr std::size_t kInitialSlack = 1024;

  QuotedPrintableWriter(std::size_t inputSize, std::int64_t lineLength)
      : out_(inputSize + kInitialSlack, '\0'), breakColumn_(lineLength - 1) {}

  void put(char c) {
    breakBefore(1);
    *claim(1) = c;
    ++column_;
  }

  // As much of the run as fits goes out before each break; a line that needs a break before its
  // first character still takes one.
  void putRun(std::string_view run) {
    while (!run.empty()) {
      breakBefore(1);
      const auto room =
          static_cast<std::size_t>(std::max<std::int64_t>(1, breakColumn_ - 1 - column_));
      const std::size_t count = std::min(room, run.size());
      std::memcpy(claim(count), run.data(), count);
      column_ += static_cast<std::int64_t>(count);
      run.remove_prefix(count);
    }
  }

  // A triple is never split across lines.
  void putEncoded(char c) {
    breakBefore(3);
    char* triple = claim(3);
    triple[0] = '=';
    writeHexPair(triple + 1, c);
    column_ += 3;
  }

  void softBreak() {
    std::memcpy(claim(3), "=\r\n", 3);
    column_ = 0;
  }

  void hardBreak() {
    std::memcpy(claim(2), "\r\n", 2);
    column_ = 0;
  }

  std::int64_t column() const { return column_; }

  std::string take() && {
    out_.resize(used_);
    return std::move(out_);
  }

 private:
  void breakBefore(std::int64_t width) {
    if (column_ + width >= breakColumn_) softBreak();
  }

  // Claims the next count bytes of the buffer.
  char* claim(std::size_t count) {
    if (out_.size() - used_ < count) out_.resize(std::max(2 * out_.size(), used_ + count));
    char* claimed = out_.data() + used_;
    used_ += count;
    return claimed;
  }

  std::string out_;
  std::size_t used_ = 0;
  std::int64_t column_ = 0;
  std::int64_t breakColumn_;
};

}  // namespace

std::string encodeHex(std::string_view bytes) {
  std::string out(bytes.size() * 2, '\0');
  text::encodeHex(bytes, out.data());
  return out;
}

std::string decodeHex(std::string_view asciiText) {
  std::string out(asciiText.size() / 2, '\0');
  text::decodeHex(asciiText, out.data());
  return out;
}

std::string encodeUrl(std::string_view bytes, std::int64_t options) {
  const auto& escaped = tables::kUrlEscaped[static_cast<std::size_t>(options & kUrlEncodeModeBits)];
  const auto escapes = static_cast<std::size_t>(
      std::count_if(bytes.begin(), bytes.end(), [&](char c) { return escaped[byteOf(c)]; }));
  // Every byte writes three places and keeps one or all of them: two spare bytes at the end.
  std::string out(bytes.size() + 2 * escapes + 2, '\0');
  char* cursor = out.data();
  for (const char c : bytes) {
    const bool escape = escaped[byteOf(c)];
    cursor[0] = escape ? '%' : c == ' ' ? '+' : c;
    writeHexPair(cursor + 1, c);
    cursor += escape ? 3 : 1;
  }
  out.resize(static_cast<std::size_t>(cursor - out.data()));
  return out;
}

std::string decodeUrl(std::string_view bytes, std::int64_t options) {
  const bool plusIsSpace = (options & kUrlPlusIsSpaceBit) != 0;
  std::string out(bytes.size(), '\0');
  char* cursor = out.data();
  std::size_t i = 0;
  while (i < bytes.size()) {
    const char c = bytes[i];
    if (c == '%') {
      // A digit missing at the end of the input adds nothing.
      unsigned value = 0;
      if (i + 1 < bytes.size()) value = hexValueOrZero(bytes[i + 1]) * 16;
      if (i + 2 < bytes.size()) value += hexValueOrZero(bytes[i + 2]);
      *cursor++ = static_cast<char>(value);
      i += 3;
    } else {
      *cursor++ = plusIsSpace && c == '+' ? ' ' : c;
      ++i;
    }
  }
  out.resize(static_cast<std::size_t>(cursor - out.data()));
  return out;
}

std::string encodeQuotedPrintable(std::string_view bytes, std::int64_t lineLength) {
  const auto requested = static_cast<std::int32_t>(lineLength);
  QuotedPrintableWriter writer(bytes.size(), requested > 1 ? requested : 72);
  constexpr char kNoBlank = '\0';
  char pendingBlank = kNoBlank;
  auto writePendingBlank = [&] {
    if (pendingBlank != kNoBlank) writer.put(pendingBlank);
    pendingBlank = kNoBlank;
  };
  bool sawLineBreak = false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    switch (tables::kQuotedPrintableClass[byteOf(c)]) {
      case tables::QuotedPrintableClass::literal: {
        writePendingBlank();
        std::size_t end = i + 1;
        while (end < bytes.size() && tables::kQuotedPrintableClass[byteOf(bytes[end])] ==
                                         tables::QuotedPrintableClass::literal) {
          ++end;
        }
        writer.putRun(bytes.substr(i, end - i));
        i = end - 1;
        break;
      }
      case tables::QuotedPrintableClass::encoded:
        writePendingBlank();
        writer.putEncoded(c);
        break;
      case tables::QuotedPrintableClass::blank:
        writePendingBlank();
        pendingBlank = c;
        break;
      case tables::QuotedPrintableClass::lineBreak:
        sawLineBreak = true;
        i += lineBreakLength(bytes, i) - 1;
        // Trailing blanks would be stripped in transit, so the one before a break is encoded.
        if (pendingBlank != kNoBlank) writer.putEncoded(pendingBlank);
        pendingBlank = kNoBlank;
        writer.hardBreak();
        break;
    }
  }
  writePendingBlank();
  if (sawLineBreak && writer.column() >= 1) writer.softBreak();
  return std::move(writer).take();
}

std::string decodeQuotedPrintable(std::string_view bytes) {
  std::string out(bytes.size(), '\0');
  char* cursor = out.data();
  std::size_t i = 0;
  while (i < bytes.size()) {
    const char c = bytes[i];
    if (isLineBreak(c)) {
      *cursor++ = '\n';
      i += lineBreakLength(bytes, i);
      continue;
    }
    if (c == '=') {
      std::size_t afterBlanks = i + 1;
      while (afterBlanks < bytes.size() &&
             (bytes[afterBlanks] == ' ' || bytes[afterBlanks] == '\t')) {
        ++afterBlanks;
      }
      if (afterBlanks < bytes.size() && isLineBreak(bytes[afterBlanks])) {
        i = afterBlanks + lineBreakLength(bytes, afterBlanks);
        continue;
      }
      if (i + 2 < bytes.size() && tables::isHexDigit(bytes[i + 1]) &&
          tables::isHexDigit(bytes[i + 2])) {
        *cursor++ =
            static_cast<char>(hexValueOrZero(bytes[i + 1]) * 16 + hexValueOrZero(bytes[i + 2]));
        i += 3;
        continue;
      }
    }
    *cursor++ = c;
    ++i;
  }
  out.resize(static_cast<std::size_t>(cursor - out.data()));
  return out;
}

std::optional<std::string> encodeEmailSubject(std::string_view utf8) {
  // Read as signed, a byte below 32 is a control character or any byte from 0x80 up.
  const bool plain = std::none_of(utf8.begin(), utf8.end(),
                                  [](char c) { return static_cast<signed char>(c) < 32; });
  if (plain) return std::nullopt;

  constexpr std::string_view kPrefix = "=?utf-8?Q?";
  constexpr std::string_view kSuffix = "?=";
  auto escaped = [](char c) { return c == '=' || c == '_' || byteOf(c) >= 128; };
  const auto escapes = static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), escaped));
  std::string out(kPrefix.size() + utf8.size() + 2 * escapes + kSuffix.size(), '\0');
  char* cursor = std::copy(kPrefix.begin(), kPrefix.end(), out.data());
  for (const char c : utf8) {
    if (escaped(c)) {
      *cursor++ = '=';
      cursor = writeHexPair(cursor, c);
    } else {
      *cursor++ = c == ' ' ? '_' : c;
    }
  }
  std::copy(kSuffix.begin(), kSuffix.end(), cursor);
  return out;
}

}  // namespace zel::strings
