#include "strings/unicode_composition.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

#include "base/out_of_memory_error.h"
#include "strings/decomposition_table.h"

namespace zel::strings {
namespace {

constexpr char16_t kFirstDecomposable = 0xC0;
constexpr std::size_t kFirstProbe = (decompositionTable.size() - 1) / 2;
constexpr char16_t kFirstHangul = 0xAC00, kLastHangul = 0xD7A3;

// The Hangul syllables have one row each, in one run.
constexpr std::size_t kFirstHangulRow = [] {
  std::size_t row = 0;
  while (decompositionTable[row].composed != kFirstHangul) ++row;
  return row;
}();
constexpr std::size_t kHangulRows = kLastHangul - kFirstHangul + 1;
static_assert(decompositionTable[kFirstHangulRow + kHangulRows - 1].composed == kLastHangul);

// Row numbers of the other characters by their high byte, one page of 256 per high byte in
// use; page 0 is empty. Entries hold the row number plus one, 0 meaning no row.
struct RowPages {
  static constexpr std::size_t kMaxPages = 32;
  std::array<std::uint8_t, 256> pageOfHighByte{};
  std::array<std::array<std::uint16_t, 256>, kMaxPages> pages{};
  std::size_t pageCount = 1;
};

constexpr RowPages kRowPages = [] {
  RowPages index;
  for (std::size_t row = 0; row < decompositionTable.size(); ++row) {
    const char16_t composed = decompositionTable[row].composed;
    if (composed >= kFirstHangul && composed <= kLastHangul) continue;
    auto& page = index.pageOfHighByte[composed >> 8];
    if (page == 0) {
      if (index.pageCount == RowPages::kMaxPages) throw "decompositions span too many pages";
      page = static_cast<std::uint8_t>(index.pageCount++);
    }
    index.pages[page][composed & 0xFF] = static_cast<std::uint16_t>(row + 1);
  }
  return index;
}();

// Every row has at least two units.
constexpr std::size_t unitCount(const DecompositionEntry& row) {
  return row.units[2] == 0 ? 2 : row.units[3] == 0 ? 3 : 4;
}

// Text is checked a block at a time, so that runs no table entry can touch are copied whole.
constexpr std::size_t kBlock = 32;

bool allBelow(std::u16string_view block, char16_t bound) {
  return std::accumulate(block.begin(), block.end(), char16_t{0},
                         [](char16_t a, char16_t b) { return std::max(a, b); }) < bound;
}

// One unit of every row, as a set searched a block at a time.
class UnitSet {
 public:
  template <typename UnitOfRow>
  constexpr explicit UnitSet(UnitOfRow unitOfRow) {
    for (const auto& row : decompositionTable) {
      const char16_t unit = unitOfRow(row);
      words_[unit / kWordBits] |= std::uint64_t{1} << (unit % kWordBits);
      lowest_ = std::min(lowest_, unit);
    }
  }

  constexpr bool contains(char16_t unit) const {
    return (words_[unit / kWordBits] >> (unit % kWordBits) & 1) != 0;
  }

  // The first position from `from` on whose unit is a member, or text.size().
  std::size_t findIn(std::u16string_view text, std::size_t from) const {
    std::size_t i = from;
    while (i < text.size()) {
      if (text.size() - i >= kBlock && allBelow(text.substr(i, kBlock), lowest_)) {
        i += kBlock;
        continue;
      }
      for (const std::size_t end = std::min(i + kBlock, text.size()); i < end; ++i) {
        if (contains(text[i])) return i;
      }
    }
    return text.size();
  }

 private:
  static constexpr std::size_t kWordBits = 64;
  std::array<std::uint64_t, 0x10000 / kWordBits> words_{};
  char16_t lowest_ = 0xFFFF;
};

// A row can only match where the next unit stands second in some row, so composition copies
// the text between such places in bulk.
constexpr UnitSet kSecondUnits([](const DecompositionEntry& row) { return row.units[1]; });

// Decomposition copies the text between characters that have a row in bulk.
constexpr UnitSet kComposedUnits([](const DecompositionEntry& row) { return row.composed; });

constexpr std::uint32_t pairKey(char16_t first, char16_t second) {
  return static_cast<std::uint32_t>(first) << 16 | second;
}

// Every row has at least two units, so a match is decided among the rows that share the first
// two; kept in table order, their first match is the first match of the whole table.
struct CompositionIndex {
  struct Candidate {
    std::uint32_t key;
    std::uint16_t row;
    friend bool operator<(const Candidate& a, const Candidate& b) {
      return a.key != b.key ? a.key < b.key : a.row < b.row;
    }
  };
  // compositionStartFlags: whether a unit stands first in some row.
  std::array<bool, 0x10000> startsRow{};
  std::vector<Candidate> candidates;
};

std::unique_ptr<const CompositionIndex> buildCompositionIndex() {
  try {
    auto index = std::make_unique<CompositionIndex>();
    index->candidates.reserve(decompositionTable.size());
    for (std::size_t row = 0; row < decompositionTable.size(); ++row) {
      const auto& units = decompositionTable[row].units;
      index->startsRow[units[0]] = true;
      index->candidates.push_back({pairKey(units[0], units[1]), static_cast<std::uint16_t>(row)});
    }
    std::sort(index->candidates.begin(), index->candidates.end());
    return index;
  } catch (const std::bad_alloc&) {
    throw OutOfMemoryError("Failed to allocate lookup table.");
  }
}

// Built at the first call; a failed build leaves it unbuilt for the next call to retry.
const CompositionIndex& compositionIndex() {
  static const std::unique_ptr<const CompositionIndex> index = buildCompositionIndex();
  return *index;
}

// The row matching text from its start, by the first-match rule; null when none does.
const DecompositionEntry* firstMatchingRow(const CompositionIndex& index,
                                           std::u16string_view text) {
  if (text.size() < 2 || !kSecondUnits.contains(text[1])) return nullptr;
  const std::uint32_t key = pairKey(text[0], text[1]);
  auto candidate = std::lower_bound(index.candidates.begin(), index.candidates.end(),
                                    CompositionIndex::Candidate{key, 0});
  for (; candidate != index.candidates.end() && candidate->key == key; ++candidate) {
    const DecompositionEntry& row = decompositionTable[candidate->row];
    const std::size_t length = unitCount(row);
    if (length <= text.size() &&
        std::equal(row.units.begin() + 2, row.units.begin() + static_cast<std::ptrdiff_t>(length),
                   text.begin() + 2)) {
      return &row;
    }
  }
  return nullptr;
}

const DecompositionEntry* rowOf(char16_t unit) {
  if (unit >= kFirstHangul && unit <= kLastHangul) {
    return &decompositionTable[kFirstHangulRow + (unit - kFirstHangul)];
  }
  const std::uint16_t row = kRowPages.pages[kRowPages.pageOfHighByte[unit >> 8]][unit & 0xFF];
  return row ? &decompositionTable[row - 1u] : nullptr;
}

// The same lookup, probing in the order the debug log reports.
const DecompositionEntry* tracedRowOf(char16_t unit, UnicodeTrace& trace) {
  trace.note("findComposition", unit);
  trace.note("middle before", static_cast<std::int64_t>(kFirstProbe));
  std::ptrdiff_t low = 0;
  auto high = static_cast<std::ptrdiff_t>(decompositionTable.size()) - 1;
  auto probe = static_cast<std::ptrdiff_t>(kFirstProbe);
  while (low <= high) {
    const char16_t composed = decompositionTable[static_cast<std::size_t>(probe)].composed;
    if (composed == unit) {
      trace.note("Char found", unit, probe);
      return &decompositionTable[static_cast<std::size_t>(probe)];
    }
    if (composed > unit) {
      high = probe - 1;
    } else {
      low = probe + 1;
    }
    probe = (low + high) / 2;
    trace.note("middle", probe);
  }
  trace.note("Char not found", unit);
  return nullptr;
}

}  // namespace

// Composition never lengthens the text, so the output is reserved once. The debug log reports
// every unit that starts a row, so a traced call takes the exact path unit by unit.
std::u16string composeCharacters(std::u16string_view text, UnicodeTrace* trace) {
  const CompositionIndex& index = compositionIndex();
  std::u16string composed;
  composed.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (!trace) {
      // No row matches before the unit just ahead of the next second unit.
      const std::size_t next = kSecondUnits.findIn(text, i + 1);
      if (next == text.size()) {
        composed.append(text.substr(i));
        break;
      }
      composed.append(text.substr(i, next - 1 - i));
      i = next - 1;
    }
    const char16_t unit = text[i];
    const DecompositionEntry* row = nullptr;
    if (index.startsRow[unit]) {
      if (trace) trace->note("findCompositionInText", unit);
      row = firstMatchingRow(index, text.substr(i));
    }
    composed.push_back(row ? row->composed : unit);
    i += row ? unitCount(*row) : 1;
  }
  return composed;
}

// The output grows a block at a time, by room for the longest decomposition of every unit.
std::u16string decomposeCharacters(std::u16string_view text, UnicodeTrace* trace) {
  constexpr std::size_t kLongestDecomposition = 4, kBlockRoom = kBlock * kLongestDecomposition;
  std::u16string decomposed(text.size() + text.size() / 2 + kBlockRoom, u'\0');
  char16_t* out = decomposed.data();
  for (std::size_t start = 0; start < text.size(); start += kBlock) {
    if (static_cast<std::size_t>(decomposed.data() + decomposed.size() - out) < kBlockRoom) {
      const auto written = static_cast<std::size_t>(out - decomposed.data());
      decomposed.resize(decomposed.size() * 2);
      out = decomposed.data() + written;
    }
    const auto block = text.substr(start, kBlock);
    // The debug log reports every unit from U+00C0 on, so a traced call looks each one up.
    const std::size_t firstComposed = trace ? 0 : kComposedUnits.findIn(block, 0);
    out = std::copy_n(block.begin(), firstComposed, out);
    for (const char16_t unit : block.substr(firstComposed)) {
      const DecompositionEntry* row = nullptr;
      if (unit >= kFirstDecomposable) row = trace ? tracedRowOf(unit, *trace) : rowOf(unit);
      if (row) {
        std::copy_n(row->units.begin(), kLongestDecomposition, out);
        out += unitCount(*row);
      } else {
        *out++ = unit;
      }
    }
  }
  decomposed.resize(static_cast<std::size_t>(out - decomposed.data()));
  return decomposed;
}

}  // namespace zel::strings
