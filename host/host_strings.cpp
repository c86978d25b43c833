#include "host_strings.h"

#include <cstring>
#include <new>
#include <string>

#include "encodings.h"
#include "live_registry.h"
#include "service_table.h"
#include "stand_in_host.h"

namespace zelhost {
namespace detail {
namespace {

constexpr std::uint32_t kStringMagic = 0x53545247;
constexpr std::size_t kSlack = 4;

LiveRegistry<StringHeader, REALstring>& liveStrings() {
  static LiveRegistry<StringHeader, REALstring> registry("string");
  return registry;
}

void destroy(StringHeader* string) {
  if (string->detached) delete[] string->bytes;
  string->~StringHeader();
  ::operator delete(static_cast<void*>(string));
}

}  // namespace

REALstring createString(std::string_view bytes, std::uint32_t encoding, bool detached) {
  const std::size_t blockSize = kInlineBytesOffset + (detached ? 0 : bytes.size() + kSlack);
  void* block = ::operator new(blockSize);
  std::memset(block, 0, blockSize);
  char* storage =
      detached ? new char[bytes.size() + kSlack]() : static_cast<char*>(block) + kInlineBytesOffset;
  if (!bytes.empty()) std::memcpy(storage, bytes.data(), bytes.size());
  auto* string =
      new (block) StringHeader{kStringMagic, encoding, 1, detached, bytes.size(), storage};
  liveStrings().add(string);
  return reinterpret_cast<REALstring>(string);
}

StringHeader* liveString(REALstring s, const char* context) {
  return liveStrings().find(s, context);
}

void retainString(REALstring s, const char* context) {
  liveStrings().retain(s, context);
}

void releaseString(REALstring s, const char* context) {
  if (liveStrings().release(s, context)) destroy(reinterpret_cast<StringHeader*>(s));
}

int liveStringCount() {
  return liveStrings().size();
}

}  // namespace detail

REALstring makeString(std::string_view bytes, std::uint32_t encoding) {
  return detail::createString(bytes, encoding);
}

REALstring makeDetachedString(std::string_view bytes, std::uint32_t encoding) {
  return detail::createString(bytes, encoding, true);
}

std::string stringBytes(REALstring s) {
  if (s == nullptr) return {};
  const detail::StringHeader* string = detail::liveString(s, "stringBytes");
  return string ? std::string(string->view()) : std::string();
}

std::uint32_t stringEncoding(REALstring s) {
  if (s == nullptr) return encoding::kNone;
  const detail::StringHeader* string = detail::liveString(s, "stringEncoding");
  return string ? string->encoding : encoding::kNone;
}

std::string convertToUtf8(REALstring s) {
  if (s == nullptr) return {};
  const detail::StringHeader* string = detail::liveString(s, "convertToUtf8");
  if (string == nullptr) return {};
  return detail::convertBytes(string->view(), string->encoding, encoding::kUTF8).value_or("");
}

const void* stringStorage(REALstring s) {
  if (s == nullptr) return nullptr;
  const detail::StringHeader* string = detail::liveString(s, "stringStorage");
  return string ? string->bytes : nullptr;
}

void retain(REALstring s) {
  if (s != nullptr) detail::retainString(s, "retain");
}

void release(REALstring s) {
  if (s != nullptr) detail::releaseString(s, "release");
}

int referenceCount(REALstring s) {
  return s == nullptr ? 0 : detail::liveStrings().references(s);
}

}  // namespace zelhost
