#include "strings/byte_ops.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>

#include "base/out_of_memory_error.h"
#include "strings/byte_set_search.h"
#include "text/utf8.h"

namespace zel::strings {

namespace {

using namespace std::string_view_literals;

constexpr unsigned char byteOf(char c) {
  return static_cast<unsigned char>(c);
}

constexpr auto kAnd = [](auto a, auto b) { return a & b; };
constexpr auto kOr = [](auto a, auto b) { return a | b; };
constexpr auto kXor = [](auto a, auto b) { return a ^ b; };

// out[i] = op(out[i], mask[i]), eight bytes at a time.
template <typename Op>
void combineInPlace(char* out, const char* mask, std::size_t count, Op op) {
  std::size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    std::uint64_t word;
    std::uint64_t maskWord;
    std::memcpy(&word, out + i, 8);
    std::memcpy(&maskWord, mask + i, 8);
    word = op(word, maskWord);
    std::memcpy(out + i, &word, 8);
  }
  for (; i < count; ++i) out[i] = static_cast<char>(op(byteOf(out[i]), byteOf(mask[i])));
}

constexpr std::size_t kTileBytes = 1024;

// out[i] = op(out[i], mask[(start + i) mod mask.size()]) for a non-empty mask and start inside it.
template <typename Op>
void applyRepeatingMask(std::span<char> out, std::string_view mask, std::size_t start, Op op) {
  if (out.size() <= mask.size() - start || mask.size() > kTileBytes / 2) {
    // A long mask is used where it lies: the rest of it from the cursor, then whole turns.
    std::string_view piece = mask.substr(start);
    for (std::size_t done = 0; done < out.size(); piece = mask) {
      const std::size_t count = std::min(piece.size(), out.size() - done);
      combineInPlace(out.data() + done, piece.data(), count, op);
      done += count;
    }
    return;
  }
  // A short mask is laid out in whole turns, so that it can be combined a word at a time.
  std::array<char, kTileBytes> tile;
  const std::size_t turns =
      std::min(kTileBytes / mask.size(), (out.size() + mask.size() - 1) / mask.size());
  const std::size_t period = turns * mask.size();
  std::rotate_copy(mask.begin(), mask.begin() + static_cast<std::ptrdiff_t>(start), mask.end(),
                   tile.begin());
  for (std::size_t filled = mask.size(); filled < period; filled *= 2) {
    std::copy_n(tile.begin(), std::min(filled, period - filled), tile.begin() + filled);
  }
  for (std::size_t done = 0; done < out.size(); done += period) {
    combineInPlace(out.data() + done, tile.data(), std::min(period, out.size() - done), op);
  }
}

template <typename Op>
std::string applyMask(std::string_view data, std::string_view mask, std::size_t start, Op op) {
  if (mask.empty()) return {};
  std::string out(data);
  applyRepeatingMask(out, mask, start, op);
  return out;
}

bool isValidMaskOffset(std::string_view mask, std::int64_t maskOffset) {
  return maskOffset >= 0 && static_cast<std::uint64_t>(maskOffset) < mask.size();
}

constexpr std::array<char, 256> kPositionBytes = [] {
  std::array<char, 256> positions{};
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = static_cast<char>(i);
  return positions;
}();

std::int64_t positionOfMember(std::string_view target, const ByteSet& members) {
  const std::size_t found = findByteInSet(target, members);
  return found == target.size() ? 0 : static_cast<std::int64_t>(found) + 1;
}

// The bytes that fail each mode of isAscii, for modes 1 and 2.
constexpr ByteSet kOutsidePrintable = [] {
  ByteSet members{};
  for (std::size_t value = 0; value < members.size(); ++value) {
    members[value] = value < 32 || value > 127;
  }
  return members;
}();
constexpr ByteSet kControl = [] {
  ByteSet members{};
  for (std::size_t value = 0; value < 32; ++value) members[value] = true;
  return members;
}();

// Marks the byte values whose reading (unsigned or signed) lies inside a range.
template <typename Reading>
void addRange(ByteSet& members, const ByteRange& range) {
  constexpr std::int64_t kLowest = std::numeric_limits<Reading>::min();
  constexpr std::int64_t kHighest = std::numeric_limits<Reading>::max();
  const std::int64_t first = std::max(range.first, kLowest);
  const std::int64_t last = std::min(range.last, kHighest);
  for (std::int64_t value = first; value <= last; ++value) {
    members[static_cast<unsigned char>(value)] = true;
  }
}

std::size_t checkedSize(std::int64_t length) {
  if (static_cast<std::uint64_t>(length) > std::string().max_size()) throw std::bad_alloc();
  return static_cast<std::size_t>(length);
}

}  // namespace

std::string maskAnd(std::string_view data, std::string_view mask) {
  return applyMask(data, mask, 0, kAnd);
}

std::string maskOr(std::string_view data, std::string_view mask) {
  return applyMask(data, mask, 0, kOr);
}

std::string maskXor(std::string_view data, std::string_view mask, std::int64_t maskOffset) {
  if (!isValidMaskOffset(mask, maskOffset)) return {};
  return applyMask(data, mask, static_cast<std::size_t>(maskOffset), kXor);
}

std::string maskXorWithPosition(std::string_view data, std::string_view mask,
                                std::int64_t maskOffset) {
  std::string out = maskXor(data, mask, maskOffset);
  for (std::size_t done = 0; done < out.size(); done += kPositionBytes.size()) {
    combineInPlace(out.data() + done, kPositionBytes.data(),
                   std::min(kPositionBytes.size(), out.size() - done), kXor);
  }
  return out;
}

std::string concatBytes(std::initializer_list<std::string_view> parts) {
  std::size_t total = 0;
  for (const auto part : parts) total += part.size();
  std::string out;
  out.reserve(total);
  for (const auto part : parts) out += part;
  return out;
}

std::int64_t positionOfAnyByte(std::string_view target, std::string_view set) {
  if (set.size() == 1) {
    const auto found = target.find(set.front());
    return found == std::string_view::npos ? 0 : static_cast<std::int64_t>(found) + 1;
  }
  ByteSet members{};
  for (const char c : set) members[byteOf(c)] = true;
  return positionOfMember(target, members);
}

std::int64_t positionOfByteInRanges(std::string_view target, std::span<const ByteRange> ranges) {
  ByteSet members{};
  for (const auto& range : ranges) addRange<unsigned char>(members, range);
  return positionOfMember(target, members);
}

std::int64_t positionOfSignedByteInRangesOrSet(std::string_view target, std::string_view set,
                                               std::span<const ByteRange> ranges) {
  ByteSet members{};
  for (const auto& range : ranges) addRange<signed char>(members, range);
  for (const char c : set) members[byteOf(c)] = true;
  return positionOfMember(target, members);
}

int compareBytesZeroPadded(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  const int prefix = a.substr(0, common).compare(b.substr(0, common));
  if (prefix != 0) return prefix < 0 ? -1 : 1;
  const auto longerTail = a.size() > b.size() ? a.substr(common) : b.substr(common);
  if (longerTail.find_first_not_of('\0') == std::string_view::npos) return 0;
  return a.size() > b.size() ? 1 : -1;
}

std::string repeatToLength(std::int64_t length, std::string_view content) {
  if (length < 1) return {};
  try {
    const std::size_t size = checkedSize(length);
    if (content.empty()) return std::string(size, '\0');
    std::string out;
    out.reserve(size);
    out += content.substr(0, size);
    // Every append starts at a whole number of copies, so the string stays periodic.
    while (out.size() < size) out.append(out, 0, std::min(out.size(), size - out.size()));
    return out;
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError("Failed to allocate memory.");
  }
}

void wipeBytes(std::span<std::uint8_t> bytes) {
  // Volatile, so that a wipe nobody reads back is still done.
  volatile std::uint8_t* const wiped = bytes.data();
  for (std::size_t i = 0; i < bytes.size(); ++i) wiped[i] = 0;
}

std::string randomBytes(std::int64_t length, bool ascii, RandomFill fill) {
  if (length < 1) return {};
  std::string out(checkedSize(length), '\0');
  auto* const outBytes = reinterpret_cast<std::uint8_t*>(out.data());
  if (!ascii) {
    fill({outBytes, out.size()});
    return out;
  }
  // One 32-bit draw per byte, as a draw of the system's random source gives.
  constexpr std::size_t kDrawsPerFill = 256;
  std::array<std::uint8_t, 4 * kDrawsPerFill> draws;
  for (std::size_t done = 0; done < out.size(); done += kDrawsPerFill) {
    const std::size_t count = std::min(kDrawsPerFill, out.size() - done);
    fill({draws.data(), 4 * count});
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t draw = draws[4 * i] | draws[4 * i + 1] << 8 | draws[4 * i + 2] << 16 |
                                 static_cast<std::uint32_t>(draws[4 * i + 3]) << 24;
      outBytes[done + i] = static_cast<std::uint8_t>(32 + draw % 96);
    }
  }
  return out;
}

bool isAscii(std::string_view bytes) {
  return isAscii(bytes, 0);
}

bool isAscii(std::string_view bytes, std::int64_t mode) {
  if (bytes.empty()) return false;
  switch (mode) {
    case 0:
      return text::asciiPrefixLength({reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                      bytes.size()}) == bytes.size();
    case 1:
      return findByteInSet(bytes, kOutsidePrintable) == bytes.size();
    case 2:
      return findByteInSet(bytes, kControl) == bytes.size();
    default:
      return false;
  }
}

std::string replaceNonPrintable(std::string_view bytes, std::int64_t replacement) {
  const auto replacementByte = static_cast<char>(replacement & 0xFF);
  std::string out(bytes);
  for (char& c : out) {
    if (byteOf(c) < 32 || byteOf(c) > 127) c = replacementByte;
  }
  return out;
}

int detectUnicodeMarker(std::string_view bytes) {
  // UTF-32 little-endian first: its mark begins with the UTF-16 little-endian one.
  if (bytes.starts_with("\xFF\xFE\0\0"sv)) return kUtf32LittleEndianMarker;
  if (bytes.starts_with("\0\0\xFE\xFF"sv)) return kUtf32BigEndianMarker;
  if (bytes.starts_with("\xEF\xBB\xBF"sv)) return kUtf8Marker;
  if (bytes.starts_with("\xFE\xFF"sv)) return kUtf16BigEndianMarker;
  if (bytes.starts_with("\xFF\xFE"sv)) return kUtf16LittleEndianMarker;
  return kNoMarker;
}

std::optional<UnicodeMarker> unicodeMarker(std::int64_t kind) {
  switch (kind) {
    case kUtf8Marker:
      return UnicodeMarker{"\xEF\xBB\xBF"sv, UnicodeForm::utf8};
    case kUtf16BigEndianMarker:
      return UnicodeMarker{"\xFE\xFF"sv, UnicodeForm::utf16};
    case kUtf16LittleEndianMarkerAlias:
    case kUtf16LittleEndianMarker:
      return UnicodeMarker{"\xFF\xFE"sv, UnicodeForm::utf16};
    case kUtf32BigEndianMarker:
      return UnicodeMarker{"\0\0\xFE\xFF"sv, UnicodeForm::utf32};
    case kUtf32LittleEndianMarkerAlias:
    case kUtf32LittleEndianMarker:
      return UnicodeMarker{"\xFF\xFE\0\0"sv, UnicodeForm::utf32};
    default:
      return std::nullopt;
  }
}

}  // namespace zel::strings
