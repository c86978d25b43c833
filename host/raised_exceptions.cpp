// Host exceptions: compiled host code sees an exception after the registered function returns;
// under PluginCallFunctionWithExceptionHandler the handler takes it instead.
#include <utility>

#include "host_strings.h"
#include "objects.h"

namespace zelhost {
namespace detail {
namespace {

// One reference held on each slot's object. Plain pointers only: a thread-local object with a
// destructor is torn down after its storage is freed under some Windows runtimes, so a thread
// that ends with an exception pending keeps that reference, and the live counts show it.
thread_local REALobject pending = nullptr;
// The innermost exception handler's slot on this thread, or null outside any handler.
thread_local REALobject* handlerSlot = nullptr;

void replace(REALobject& slot, REALobject exception) {
  if (slot != nullptr) releaseObject(slot, "RuntimeRaiseException");
  slot = exception;
}

}  // namespace

void raiseException(REALobject exception) {
  if (liveObject(exception, "RuntimeRaiseException") == nullptr) return;
  retainObject(exception, "RuntimeRaiseException");
  replace(handlerSlot != nullptr ? *handlerSlot : pending, exception);
}

REALobject makeException(std::string_view name, std::string_view message) {
  REALobject exception = createObject(*findClass(name));
  REALstring text = createString(message, encoding::kUTF8);
  writeProperty(exception, "Message", PropertyType::String, {0, text});
  releaseString(text, "makeException");
  return exception;
}

REALobject runWithExceptionHandler(service::ExceptionHandledFunction function, void* context) {
  REALobject caught = nullptr;
  REALobject* const outer = std::exchange(handlerSlot, &caught);
  function(context);
  handlerSlot = outer;
  return caught;
}

REALobject takeRaisedObject() {
  return std::exchange(pending, nullptr);
}

RaisedException describeException(REALobject exception) {
  RaisedException described{className(exception), {}, 0};
  PropertyValue value;
  if (readProperty(exception, "Message", PropertyType::String, value) && value.string) {
    described.message = convertToUtf8(value.string);
    releaseString(value.string, "describeException");
  }
  if (readProperty(exception, "ErrorNumber", PropertyType::Integer, value)) {
    described.errorNumber = value.number;
  }
  return described;
}

}  // namespace detail

std::optional<RaisedException> takeRaisedException() {
  const REALobject exception = detail::takeRaisedObject();
  if (exception == nullptr) return std::nullopt;
  RaisedException described = detail::describeException(exception);
  detail::releaseObject(exception, "takeRaisedException");
  return described;
}

}  // namespace zelhost
