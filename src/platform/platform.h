// What differs by operating system, each need behind one small function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zel::platform {

// Zero-filled scratch memory from the system allocator; null on failure.
void* allocateZeroed(std::size_t bytes) noexcept;
void releaseBlock(void* block) noexcept;

struct BlockDeleter {
  void operator()(void* block) const noexcept { releaseBlock(block); }
};
using ZeroedBlock = std::unique_ptr<void, BlockDeleter>;

// Fills the bytes from the system's cryptographic source, falling back to rand().
void secureRandomBytes(std::span<std::uint8_t> bytes) noexcept;

// The debugger output: OutputDebugStringA on Windows, one line on standard error elsewhere.
void debuggerOutput(const char* text) noexcept;

std::uint32_t currentThreadId() noexcept;
std::uint32_t currentProcessId() noexcept;

std::optional<std::string> environmentVariable(const char* name);

int compareIgnoringCase(const char* a, const char* b, std::size_t count) noexcept;

}  // namespace zel::platform
