// The optional diagnostic log: typed messages with the "ZEL Debug: " prefix, one formatting sink.
// The typed members write nothing while the log is off; callers still test debugEnabled() before
// they prepare costly arguments. The sink itself does not look at the flag.
#pragma once

#include <atomic>
#include <cstdint>

namespace zel {

namespace detail {
inline std::atomic<bool> debugFlag{false};
}

inline bool debugEnabled() noexcept {
  return detail::debugFlag.load(std::memory_order_relaxed);
}
inline void setDebugEnabled(bool on) noexcept {
  detail::debugFlag.store(on, std::memory_order_relaxed);
}

inline constexpr const char* kDebugPrefix = "ZEL Debug: ";

// Formats into a 4096-byte buffer (longer text is cut) and writes it to the debugger output.
void debugLog(const char* format, ...) noexcept
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

void debugLogLabel(const char* label) noexcept;
void debugLogText(const char* label, const char* text) noexcept;
void debugLogTexts(const char* label, const char* first, const char* second) noexcept;
void debugLogInt32(const char* label, std::int32_t value) noexcept;
void debugLogUInt32(const char* label, std::uint32_t value) noexcept;
void debugLogPointer(const char* label, const void* value) noexcept;
void debugLogInt64(const char* label, std::int64_t value) noexcept;
void debugLogInt64Pair(const char* label, std::int64_t first, std::int64_t second) noexcept;
void debugLogUInt64(const char* label, std::uint64_t value) noexcept;
// A finding of the definition checks: the prefix, then the formatted text.
void debugLogFinding(const char* format, ...) noexcept
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

}  // namespace zel
