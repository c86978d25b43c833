// What differs by operating system, each need behind one small function. Every platform gives the
// same observable results; the per-OS files say how.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zel::platform {

// Zero-filled scratch memory from the system allocator; null on failure. A request for 0 bytes
// still yields a distinct block.
void* allocateZeroed(std::size_t bytes) noexcept;
// Grows or shrinks a block from allocateZeroed, zero-filling any growth; oldBytes is the size it
// was allocated or last resized with. Null on failure, when the old block stays valid.
void* resizeZeroed(void* block, std::size_t oldBytes, std::size_t newBytes) noexcept;
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

// Like strncmp, but ASCII letters compare without regard to case.
int compareIgnoringCase(const char* a, const char* b, std::size_t count) noexcept;

namespace detail {
// The fallback when the cryptographic source fails: the low 8 bits of one rand() per byte.
void fillFromRand(std::span<std::uint8_t> bytes) noexcept;
}  // namespace detail

}  // namespace zel::platform
