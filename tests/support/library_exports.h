// What a built shared library offers and needs, read from the file as the system loader reads it.
#pragma once

#include <string>
#include <vector>

namespace zeltest {

// The names of the functions the library exports.
std::vector<std::string> exportedSymbols(const std::string& path);

#if defined(_WIN32)
// The DLLs the library imports from, in lower case.
std::vector<std::string> importedLibraries(const std::string& path);
#endif

}  // namespace zeltest
