#include "strings/code_pages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "strings/code_page_tables.h"

namespace zel::strings {
namespace {

constexpr std::size_t kShortestEncodedText = 3;

// The table inverted: for every unit, the first byte whose entry holds it, or -1.
// Units are looked up by their high byte in a page table; page 0 holds only -1.
struct ReverseIndex {
  static constexpr std::size_t kMaxPages = 8;
  using Page = std::array<std::int16_t, 256>;
  std::array<std::uint8_t, 256> pageOfHighByte{};
  std::array<Page, kMaxPages> pages{};
  std::size_t pageCount = 1;

  int byteFor(char16_t unit) const { return pages[pageOfHighByte[unit >> 8]][unit & 0xFF]; }
};

constexpr ReverseIndex buildReverseIndex(const CodePageTable& table) {
  ReverseIndex index;
  for (auto& page : index.pages) page.fill(-1);
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    const std::size_t highByte = table[byte] >> 8, lowByte = table[byte] & 0xFF;
    if (index.pageOfHighByte[highByte] == 0) {
      if (index.pageCount == ReverseIndex::kMaxPages) throw "code page spans too many pages";
      index.pageOfHighByte[highByte] = static_cast<std::uint8_t>(index.pageCount++);
    }
    std::int16_t& slot = index.pages[index.pageOfHighByte[highByte]][lowByte];
    if (slot < 0) slot = static_cast<std::int16_t>(byte);
  }
  return index;
}

constexpr ReverseIndex kIso8859_1Reverse = buildReverseIndex(kIso8859_1Table);
constexpr ReverseIndex kWindows1252Reverse = buildReverseIndex(kWindows1252Table);

const CodePageTable& tableOf(CodePage page) {
  return page == CodePage::Iso8859_1 ? kIso8859_1Table : kWindows1252Table;
}

const ReverseIndex& reverseIndexOf(CodePage page) {
  return page == CodePage::Iso8859_1 ? kIso8859_1Reverse : kWindows1252Reverse;
}

}  // namespace

std::u16string decodeCodePage(std::span<const std::uint8_t> bytes, CodePage page) {
  const CodePageTable& table = tableOf(page);
  std::u16string text(bytes.size(), u'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(),
                 [&table](std::uint8_t byte) { return table[byte]; });
  return text;
}

std::string encodeCodePage(std::u16string_view text, CodePage page) {
  if (text.size() < kShortestEncodedText) return {};
  const ReverseIndex& index = reverseIndexOf(page);
  std::string bytes(text.size(), '\0');
  std::size_t written = 0;
  for (const char16_t unit : text) {
    const int byte = index.byteFor(unit);
    bytes[written] = static_cast<char>(byte);
    written += byte >= 0 ? 1 : 0;
  }
  bytes.resize(written);
  return bytes;
}

}  // namespace zel::strings
