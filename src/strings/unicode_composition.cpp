#include "strings/unicode_composition.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
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
  static constexpr std::uint8_t kStartsRow = 1, kSecondInRow = 2;
  // compositionStartFlags, with a second bit for the units that stand second in some row.
  std::array<std::uint8_t, 0x10000> flags{};
  std::vector<Candidate> candidates;
};

std::unique_ptr<const CompositionIndex> buildCompositionIndex() {
  try {
    auto index = std::make_unique<CompositionIndex>();
    index->candidates.reserve(decompositionTable.size());
    for (std::size_t row = 0; row < decompositionTable.size(); ++row) {
      const auto& units = decompositionTable[row].units;
      index->flags[units[0]] |= CompositionIndex::kStartsRow;
      index->flags[units[1]] |= CompositionIndex::kSecondInRow;
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
  if (text.size() < 2 || !(index.flags[text[1]] & CompositionIndex::kSecondInRow)) return nullptr;
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

// Composition never lengthens the text, so the output is sized once.
std::u16string composeCharacters(std::u16string_view text, UnicodeTrace* trace) {
  const CompositionIndex& index = compositionIndex();
  std::u16string composed(text.size(), u'\0');
  char16_t* out = composed.data();
  for (std::size_t i = 0; i < text.size();) {
    const char16_t unit = text[i];
    const DecompositionEntry* row = nullptr;
    if (index.flags[unit] & CompositionIndex::kStartsRow) {
      if (trace) trace->note("findCompositionInText", unit);
      row = firstMatchingRow(index, text.substr(i));
    }
    *out++ = row ? row->composed : unit;
    i += row ? unitCount(*row) : 1;
  }
  composed.resize(static_cast<std::size_t>(out - composed.data()));
  return composed;
}

std::u16string decomposeCharacters(std::u16string_view text, UnicodeTrace* trace) {
  constexpr std::size_t kLongestDecomposition = 4;
  std::u16string decomposed(text.size() + text.size() / 2 + kLongestDecomposition, u'\0');
  char16_t* out = decomposed.data();
  for (const char16_t unit : text) {
    if (static_cast<std::size_t>(decomposed.data() + decomposed.size() - out) <
        kLongestDecomposition) {
      const auto written = static_cast<std::size_t>(out - decomposed.data());
      decomposed.resize(decomposed.size() * 2);
      out = decomposed.data() + written;
    }
    const DecompositionEntry* row = nullptr;
    if (unit >= kFirstDecomposable) row = trace ? tracedRowOf(unit, *trace) : rowOf(unit);
    if (row) {
      std::copy_n(row->units.begin(), kLongestDecomposition, out);
      out += unitCount(*row);
    } else {
      *out++ = unit;
    }
  }
  decomposed.resize(static_cast<std::size_t>(out - decomposed.data()));
  return decomposed;
}

}  // namespace zel::strings
