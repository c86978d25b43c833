// Host exceptions: compiled host code sees an exception after the registered function returns;
// under PluginCallFunctionWithExceptionHandler the handler takes it instead.
#include <vector>

#include "host_strings.h"
#include "objects.h"

namespace zelhost {
namespace detail {
namespace {

// One reference held on each slot's object.
struct ExceptionSlots {
  REALobject pending = nullptr;
  std::vector<REALobject> handlers;

  ~ExceptionSlots() {
    if (pending != nullptr) releaseObject(pending, "pending exception");
  }
};

thread_local ExceptionSlots slots;

void replace(REALobject& slot, REALobject exception) {
  if (slot != nullptr) releaseObject(slot, "RuntimeRaiseException");
  slot = exception;
}

}  // namespace

void raiseException(REALobject exception) {
  if (liveObject(exception, "RuntimeRaiseException") == nullptr) return;
  retainObject(exception, "RuntimeRaiseException");
  replace(slots.handlers.empty() ? slots.pending : slots.handlers.back(), exception);
}

REALobject makeException(std::string_view name, std::string_view message) {
  REALobject exception = createObject(*findClass(name));
  REALstring text = createString(message, encoding::kUTF8);
  writeProperty(exception, "Message", PropertyType::String, {0, text});
  releaseString(text, "makeException");
  return exception;
}

REALobject runWithExceptionHandler(service::ExceptionHandledFunction function, void* context) {
  slots.handlers.push_back(nullptr);
  function(context);
  const REALobject caught = slots.handlers.back();
  slots.handlers.pop_back();
  return caught;
}

REALobject takeRaisedObject() {
  const REALobject taken = slots.pending;
  slots.pending = nullptr;
  return taken;
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
