#include "strings/line_endings.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#include "strings/word_scan.h"

namespace zel::strings {
namespace {

const char* findLineBreak(const char* from, const char* end) {
  using namespace word_scan;
  for (; end - from >= static_cast<std::ptrdiff_t>(kWordBytes); from += kWordBytes) {
    const std::uint64_t word = load(from);
    if (const std::uint64_t found = bytesEqualTo(word, '\r') | bytesEqualTo(word, '\n')) {
      return from + firstMarkedByte(found);
    }
  }
  return std::find_if(from, end, [](char c) { return c == '\r' || c == '\n'; });
}

// Converts the steps that start before `stop`; the last one may read one byte past it.
const char* convertUntil(const char* read, const char* stop, const char* end,
                         std::string_view newLine, std::string& out) {
  while (read < stop) {
    const char* lineBreak = findLineBreak(read, stop);
    out.append(read, lineBreak);
    if (lineBreak == stop) return stop;
    out += newLine;
    const char partner = *lineBreak == '\r' ? '\n' : '\r';
    read = lineBreak + 1;
    if (read < end && *read == partner) ++read;
  }
  return read;
}

// Sized in 64 bits, since the product wraps around a 32-bit size_t; a size no string can hold
// is an allocation failure there, as it is where the allocator refuses it.
std::size_t reservationFor(std::size_t textSize, std::size_t newLineSize) {
  constexpr std::uint64_t kBytesPerExpectedLine = 50;
  constexpr std::uint64_t kExtraLines = 1000;
  const std::uint64_t lines = std::uint64_t{textSize} / kBytesPerExpectedLine + kExtraLines;
  const std::uint64_t limit = std::string().max_size();
  if (newLineSize != 0 && lines > (limit - textSize) / newLineSize) throw std::bad_alloc();
  return static_cast<std::size_t>(textSize + lines * newLineSize);
}

bool isYieldAddress(const char* p) {
  return (reinterpret_cast<std::uintptr_t>(p) & (kLineEndingYieldStride - 1)) == 0;
}

}  // namespace

std::string replaceLineEndings(std::string_view text, std::string_view newLine, bool yield,
                               const std::function<void()>& yieldToHost) {
  std::string out;
  out.reserve(reservationFor(text.size(), newLine.size()));
  const char* read = text.data();
  const char* const end = read + text.size();
  while (read < end) {
    // Walk to the next yield address; a pair straddling it skips that yield, as a step would.
    const char* stop = end;
    if (yield) {
      const auto address = reinterpret_cast<std::uintptr_t>(read);
      const std::size_t toNext = kLineEndingYieldStride - (address & (kLineEndingYieldStride - 1));
      stop = read + std::min<std::size_t>(toNext, static_cast<std::size_t>(end - read));
    }
    read = convertUntil(read, stop, end, newLine, out);
    if (yield && isYieldAddress(read)) yieldToHost();
  }
  return out;
}

}  // namespace zel::strings
