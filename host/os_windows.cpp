// Windows: LoadLibrary on a temporary copy, and the debugger output caught by a vectored exception
// handler, the way a debugger sees it: OutputDebugStringA raises DBG_PRINTEXCEPTION_C with the
// text's length and address.
#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string_view>

#include "os.h"

namespace zelhost::os {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kCopyPrefix = "zelhost-plugin-";

std::mutex outputMutex;
std::string output;
PVOID handler = nullptr;

LONG CALLBACK catchDebugOutput(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode != DBG_PRINTEXCEPTION_C || record.NumberParameters < 2)
    return EXCEPTION_CONTINUE_SEARCH;
  const auto* text = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  {
    const std::lock_guard lock(outputMutex);
    output.append(text).push_back('\n');
  }
  // Seen, as by an attached debugger: OutputDebugStringA returns at once.
  return EXCEPTION_CONTINUE_EXECUTION;
}

bool processRuns(DWORD id) {
  HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
  if (process == nullptr) return false;
  DWORD code = 0;
  const bool running = GetExitCodeProcess(process, &code) && code == STILL_ACTIVE;
  CloseHandle(process);
  return running;
}

// A loaded library's file cannot be deleted; the copies of processes that have ended are deleted
// here instead. A copy is named after its process: prefix, process id, "-", number, ".dll".
void removeCopiesOfEndedProcesses(const fs::path& folder) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(kCopyPrefix) || !name.ends_with(".dll")) continue;
    const auto id =
        static_cast<DWORD>(std::strtoul(name.c_str() + kCopyPrefix.size(), nullptr, 10));
    if (id != GetCurrentProcessId() && !processRuns(id)) fs::remove(entry.path(), error);
  }
}

// LoadLibrary hands back the already loaded instance for a path it has seen.
fs::path privateCopy(const std::string& path) {
  static std::atomic<unsigned> copies{0};
  const fs::path folder = fs::temp_directory_path();
  removeCopiesOfEndedProcesses(folder);
  const fs::path copy = folder / (std::string(kCopyPrefix) + std::to_string(GetCurrentProcessId()) +
                                  "-" + std::to_string(copies++) + ".dll");
  std::error_code error;
  fs::copy_file(path, copy, fs::copy_options::overwrite_existing, error);
  if (error) throw std::runtime_error("cannot copy " + path + ": " + error.message());
  return copy;
}

}  // namespace

void* loadFreshLibrary(const std::string& path) {
  const fs::path copy = privateCopy(path);
  HMODULE library = LoadLibraryW(copy.c_str());
  if (library == nullptr) {
    const DWORD code = GetLastError();
    std::error_code ignored;
    fs::remove(copy, ignored);
    throw std::runtime_error("cannot load " + path + ": error " + std::to_string(code));
  }
  return library;
}

void* findSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void captureDebugOutput(bool on) {
  {
    const std::lock_guard lock(outputMutex);
    output.clear();
  }
  if (on && handler == nullptr) handler = AddVectoredExceptionHandler(1, &catchDebugOutput);
  if (!on && handler != nullptr) {
    RemoveVectoredExceptionHandler(handler);
    handler = nullptr;
  }
}

std::string capturedDebugOutput() {
  const std::lock_guard lock(outputMutex);
  return handler == nullptr ? std::string() : output;
}

}  // namespace zelhost::os

#endif
