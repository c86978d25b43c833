#include "framework/exceptions.h"

#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "base/out_of_memory_error.h"
#include "framework/debug_log.h"
#include "framework/host_api.h"
#include "framework/tagged_string.h"

namespace zel {
namespace {

struct Translation {
  const char* baseText;
  const char* className;
};

// First match wins.
Translation translationFor(const std::exception& failure) noexcept {
  if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr)
    return {"Failed to allocate memory", "OutOfMemoryException"};
  if (dynamic_cast<const std::range_error*>(&failure) != nullptr)
    return {"C++ reports range error", "OutOfBoundsException"};
  if (dynamic_cast<const std::out_of_range*>(&failure) != nullptr)
    return {"C++ reports range error", "OutOfBoundsException"};
  if (dynamic_cast<const std::overflow_error*>(&failure) != nullptr)
    return {"C++ reports overflow error", "OutOfBoundsException"};
  if (dynamic_cast<const std::underflow_error*>(&failure) != nullptr)
    return {"C++ reports underflow error", "OutOfBoundsException"};
  return {"C++ Exception", "RuntimeException"};
}

}  // namespace

void RaiseHostException(const char* className, const char* message) noexcept {
  const std::size_t length = message == nullptr ? 0 : std::strlen(message);
  const REALstring text =
      length == 0 ? nullptr : buildTaggedString(message, static_cast<int>(length), encoding::kUTF8);
  REALobject exception = host::PluginNewInstance(className);
  if (exception == nullptr) exception = host::PluginNewInstance("RuntimeException");
  if (exception != nullptr) {
    host::REALSetPropValueString(exception, "Message", text);
    host::REALSetPropValueInteger(exception, "ErrorNumber", 0);
    host::RuntimeRaiseException(exception);
    host::REALUnlockObject(exception);
  }
  if (text != nullptr) host::REALUnlockString(text);
}

void RaiseOutOfBounds(const char* message) noexcept {
  RaiseHostException("OutOfBoundsException", message);
}

void TranslateException(const std::exception& failure) noexcept {
  if (const auto* exact = dynamic_cast<const OutOfMemoryError*>(&failure)) {
    RaiseHostException("OutOfMemoryException", exact->what());
    return;
  }
  const Translation translation = translationFor(failure);
  try {
    const char* description = failure.what();
    std::string message = translation.baseText;
    if (description == nullptr || *description == '\0') {
      message += '.';
    } else {
      message += ": ";
      message += description;
    }
    RaiseHostException(translation.className, message.c_str());
  } catch (...) {
    // Not even the message could be built: raise without one.
    RaiseHostException(translation.className, nullptr);
  }
}

void RaiseUnnamedException() noexcept {
  if (debugEnabled()) debugLogLabel("Unnamed C++ Exception.");
  RaiseHostException("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
}

}  // namespace zel
