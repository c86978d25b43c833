// What the stand-in host needs from the operating system, one small function per need, with one
// implementation per system (os_posix.cpp, os_windows.cpp).
#pragma once

#include <string>

namespace zelhost::os {

// Loads a private copy of the library at path, so that every load is a fresh instance with its
// own state; returns its handle, never closed (the host keeps pointers into it). Throws
// std::runtime_error when the library cannot be copied or loaded.
void* loadFreshLibrary(const std::string& path);
void* findSymbol(void* library, const char* name);

// Starts (dropping what was captured) or stops capturing what the plug-in writes to the
// debugger output: standard error on POSIX systems, OutputDebugStringA on Windows.
void captureDebugOutput(bool on);
// What was captured since the capture started, one line per message.
std::string capturedDebugOutput();

}  // namespace zelhost::os
