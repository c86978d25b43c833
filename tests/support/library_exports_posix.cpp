#if !defined(_WIN32)

#include <cstdio>
#include <memory>

#include "support/library_exports.h"

namespace zeltest {

std::vector<std::string> exportedSymbols(const std::string& path) {
  const std::string command = "nm -D --defined-only '" + path + "'";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::vector<std::string> symbols;
  if (!pipe) return symbols;
  char line[512];
  while (std::fgets(line, sizeof line, pipe.get()) != nullptr) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    const auto name = text.substr(text.find_last_of(' ') + 1);
    const char kind = text.size() > 17 ? text[17] : '?';
    // Absolute and version-definition entries are linker bookkeeping, not exports.
    if (kind != 'A') symbols.push_back(name);
  }
  return symbols;
}

}  // namespace zeltest

#endif
