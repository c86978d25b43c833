#include "strings/line_endings.h"

#include <algorithm>
#include <cstdint>

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

bool isYieldAddress(const char* p) {
  return (reinterpret_cast<std::uintptr_t>(p) & (kLineEndingYieldStride - 1)) == 0;
}

}  // namespace

std::string replaceLineEndings(std::string_view text, std::string_view newLine, bool yield,
                               const std::function<void()>& yieldToHost) {
  std::string out;
  out.reserve(text.size() + (text.size() / 50 + 1000) * newLine.size());
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
