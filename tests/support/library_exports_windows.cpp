// Reads the export and import directories of the library mapped as an image, without running it.
#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cctype>
#include <memory>
#include <type_traits>

#include "support/library_exports.h"

namespace zeltest {
namespace {

struct LibraryDeleter {
  void operator()(HMODULE library) const { FreeLibrary(library); }
};
using MappedImage = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryDeleter>;

MappedImage mapImage(const std::string& path) {
  return MappedImage(LoadLibraryExA(path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
}

const IMAGE_DATA_DIRECTORY& directory(HMODULE image, int entry) {
  const auto* base = reinterpret_cast<const BYTE*>(image);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  return nt->OptionalHeader.DataDirectory[entry];
}

template <class T>
const T* at(HMODULE image, DWORD rva) {
  return reinterpret_cast<const T*>(reinterpret_cast<const BYTE*>(image) + rva);
}

}  // namespace

std::vector<std::string> exportedSymbols(const std::string& path) {
  std::vector<std::string> symbols;
  const MappedImage image = mapImage(path);
  if (!image) return symbols;
  const IMAGE_DATA_DIRECTORY& exports = directory(image.get(), IMAGE_DIRECTORY_ENTRY_EXPORT);
  if (exports.Size == 0) return symbols;
  const auto* table = at<IMAGE_EXPORT_DIRECTORY>(image.get(), exports.VirtualAddress);
  const auto* names = at<DWORD>(image.get(), table->AddressOfNames);
  for (DWORD i = 0; i < table->NumberOfNames; ++i)
    symbols.emplace_back(at<char>(image.get(), names[i]));
  return symbols;
}

std::vector<std::string> importedLibraries(const std::string& path) {
  std::vector<std::string> libraries;
  const MappedImage image = mapImage(path);
  if (!image) return libraries;
  const IMAGE_DATA_DIRECTORY& imports = directory(image.get(), IMAGE_DIRECTORY_ENTRY_IMPORT);
  if (imports.Size == 0) return libraries;
  for (const auto* entry = at<IMAGE_IMPORT_DESCRIPTOR>(image.get(), imports.VirtualAddress);
       entry->Name != 0; ++entry) {
    std::string name = at<char>(image.get(), entry->Name);
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    libraries.push_back(std::move(name));
  }
  return libraries;
}

}  // namespace zeltest

#endif
