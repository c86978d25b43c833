#include "framework/debug_log.h"

#include <array>
#include <cstdarg>
#include <cstdio>

#include "platform/platform.h"

namespace zel {
namespace {

constexpr std::size_t kLineCapacity = 4096;

void writeFormatted(const char* format, std::va_list arguments) noexcept {
  std::array<char, kLineCapacity> line{};
  // vsnprintf cuts long text and keeps the terminating zero.
  std::vsnprintf(line.data(), line.size(), format, arguments);
  platform::debuggerOutput(line.data());
}

}  // namespace

void debugLog(const char* format, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, format);
  writeFormatted(format, arguments);
  va_end(arguments);
}

void debugLogFinding(const char* format, ...) noexcept {
  if (!debugEnabled()) return;
  std::array<char, kLineCapacity> text{};
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  debugLog("%s%s", kDebugPrefix, text.data());
}

void debugLogLabel(const char* label) noexcept {
  if (debugEnabled()) debugLog("%s%s", kDebugPrefix, label);
}

void debugLogText(const char* label, const char* text) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %s", kDebugPrefix, label, text);
}

void debugLogTexts(const char* label, const char* first, const char* second) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %s, %s", kDebugPrefix, label, first, second);
}

void debugLogInt32(const char* label, std::int32_t value) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %d", kDebugPrefix, label, value);
}

void debugLogUInt32(const char* label, std::uint32_t value) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %u", kDebugPrefix, label, value);
}

void debugLogPointer(const char* label, const void* value) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %p", kDebugPrefix, label, value);
}

void debugLogInt64(const char* label, std::int64_t value) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %lld", kDebugPrefix, label, static_cast<long long>(value));
}

void debugLogInt64Pair(const char* label, std::int64_t first, std::int64_t second) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %lld, %lld", kDebugPrefix, label, static_cast<long long>(first),
           static_cast<long long>(second));
}

void debugLogUInt64(const char* label, std::uint64_t value) noexcept {
  if (!debugEnabled()) return;
  debugLog("%s%s %llu", kDebugPrefix, label, static_cast<unsigned long long>(value));
}

}  // namespace zel
