// POSIX systems: dlopen on a temporary copy, and standard error redirected into a file (a file,
// unlike a pipe, never blocks the writer).
#if !defined(_WIN32)

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "os.h"

namespace zelhost::os {
namespace {

int savedDescriptor = -1;
std::FILE* captureFile = nullptr;

// The dynamic loader hands back the already loaded instance for a path it has seen.
std::string privateCopy(const std::string& path) {
  std::string name = (std::filesystem::temp_directory_path() / "zelhost-plugin-XXXXXX.so").string();
  const int descriptor = mkstemps(name.data(), 3);
  if (descriptor < 0) throw std::runtime_error("cannot create a copy of " + path);
  close(descriptor);
  std::error_code error;
  std::filesystem::copy_file(path, name, std::filesystem::copy_options::overwrite_existing, error);
  if (error) {
    std::filesystem::remove(name);
    throw std::runtime_error("cannot copy " + path + ": " + error.message());
  }
  return name;
}

}  // namespace

void* loadFreshLibrary(const std::string& path) {
  const std::string copy = privateCopy(path);
  void* library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
  std::filesystem::remove(copy);
  if (library == nullptr) throw std::runtime_error("cannot load " + path + ": " + dlerror());
  return library;
}

void* findSymbol(void* library, const char* name) {
  return dlsym(library, name);
}

void captureDebugOutput(bool on) {
  std::fflush(stderr);
  if (captureFile != nullptr) {
    dup2(savedDescriptor, STDERR_FILENO);
    close(savedDescriptor);
    std::fclose(captureFile);
    captureFile = nullptr;
    savedDescriptor = -1;
  }
  if (!on) return;
  captureFile = std::tmpfile();
  if (captureFile == nullptr) return;
  savedDescriptor = dup(STDERR_FILENO);
  dup2(fileno(captureFile), STDERR_FILENO);
}

std::string capturedDebugOutput() {
  if (captureFile == nullptr) return {};
  std::fflush(stderr);
  struct stat status {};
  if (fstat(fileno(captureFile), &status) != 0) return {};
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t got = pread(fileno(captureFile), text.data() + done, text.size() - done,
                              static_cast<off_t>(done));
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  text.resize(done);
  return text;
}

}  // namespace zelhost::os

#endif
