// A small plug-in for testing the stand-in host before the real one exists: it registers a few
// members of every kind through the resolver and uses the host services the way a plug-in does.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "sdk/host_services.h"
#include "sdk/host_types.h"
#include "sdk/plugin_export.h"

namespace {

REALresolver resolver = nullptr;

template <class Service>
Service use(const char* name) {
  return reinterpret_cast<Service>(resolver(name));
}

std::string utf8Of(REALstring s) {
  if (s == nullptr) return {};
  REALstringData data{};
  if (!use<service::PluginGetStringData>("PluginGetStringData")(s, encoding::kUTF8, &data))
    return {};
  std::string text(static_cast<const char*>(data.data), data.length);
  use<service::PluginDisposeStringData>("PluginDisposeStringData")(&data);
  return text;
}

REALstring utf8String(const std::string& text) {
  if (text.empty()) return nullptr;
  return use<service::REALBuildStringWithEncoding>("REALBuildStringWithEncoding")(
      text.data(), static_cast<int>(text.size()), encoding::kUTF8);
}

REALstring echo(REALstring s) {
  if (s != nullptr) use<service::REALLockString>("REALLockString")(s);
  return s;
}

REALstring upper(REALstring s) {
  std::string text = utf8Of(s);
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return utf8String(text);
}

RBInteger add(RBInteger a, RBInteger b) {
  return a + b;
}
RBBoolean negate(RBBoolean b) {
  return b ? 0 : 1;
}
double half(double d) {
  return d / 2;
}
RBColor swapColor(RBColor c) {
  return (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
}

RBInteger blockSize(REALobject block) {
  RBInteger size = -1;
  if (block != nullptr) {
    use<service::REALGetPropValueInteger>("REALGetPropValueInteger")(block, "Size", &size);
  }
  return size;
}

struct NewBlock {
  RBInteger size;
  REALobject block;
};

void constructBlock(void* context) {
  auto& request = *static_cast<NewBlock*>(context);
  REALobject block = use<service::PluginNewInstance>("PluginNewInstance")("MemoryBlock");
  if (block == nullptr) return;
  auto constructor =
      reinterpret_cast<void (*)(REALobject, RBInteger)>(use<service::REALLoadObjectMethod>(
          "REALLoadObjectMethod")(block, "Constructor(bytes as Integer)"));
  constructor(block, request.size);
  request.block = block;
}

REALobject copyToBlock(void* data, RBInteger size) {
  NewBlock request{size, nullptr};
  REALobject exception = use<service::PluginCallFunctionWithExceptionHandler>(
      "PluginCallFunctionWithExceptionHandler")(&constructBlock, &request);
  if (exception != nullptr) {
    use<service::REALUnlockObject>("REALUnlockObject")(exception);
    if (request.block != nullptr) use<service::REALUnlockObject>("REALUnlockObject")(request.block);
    return nullptr;
  }
  if (request.block == nullptr) return nullptr;
  auto pointer = reinterpret_cast<void* (*)(REALobject)>(use<service::REALLoadObjectMethod>(
      "REALLoadObjectMethod")(request.block, "Operator_Convert() As Ptr"));
  std::memcpy(pointer(request.block), data, static_cast<std::size_t>(size));
  return request.block;
}

REALarray split(REALstring s) {
  const std::string text = utf8Of(s);
  REALarray array = use<service::RuntimeArrayCreateSingleDimBoundedArray>(
      "RuntimeArrayCreateSingleDimBoundedArray")(kArrayOfString, -1);
  if (array == nullptr) return nullptr;
  auto insert = use<service::PluginStringArrayInsertProc>("PluginStringArrayInsertProc")(array);
  for (std::size_t i = 0; i < text.size(); ++i) {
    REALstring item = utf8String(text.substr(i, 1));
    insert(array, use<service::RuntimeUBound>("RuntimeUBound")(array) + 1, item);
    use<service::REALUnlockString>("REALUnlockString")(item);
  }
  return array;
}

REALstring fail(REALstring message) {
  REALobject exception =
      use<service::PluginNewInstance>("PluginNewInstance")("OutOfBoundsException");
  use<service::REALSetPropValueString>("REALSetPropValueString")(exception, "Message", message);
  use<service::REALSetPropValueInteger>("REALSetPropValueInteger")(exception, "ErrorNumber", 7);
  use<service::RuntimeRaiseException>("RuntimeRaiseException")(exception);
  use<service::REALUnlockObject>("REALUnlockObject")(exception);
  return nullptr;
}

// Keeps one reference too many until UnleakZEL gives it back.
REALstring leaked = nullptr;

REALstring leak(REALstring s) {
  use<service::REALLockString>("REALLockString")(s);
  leaked = s;
  return echo(s);
}

RBInteger unleak() {
  if (leaked == nullptr) return 0;
  use<service::REALUnlockString>("REALUnlockString")(leaked);
  leaked = nullptr;
  return 1;
}

RBInteger log(REALstring s) {
  const std::string text = utf8Of(s);
  zel::platform::debuggerOutput(("ZEL Debug: " + text).c_str());
  return static_cast<RBInteger>(text.size());
}

RBInteger pickString(REALstring) {
  return 1;
}
RBInteger pickBlock(REALobject) {
  return 2;
}

// Class extension on MemoryBlock: reading gives "prefix:size", assigning resizes to the value.
REALstring tagOf(REALobject block, REALstring prefix) {
  return utf8String(utf8Of(prefix) + ":" + std::to_string(blockSize(block)));
}

void setTag(REALobject block, REALstring, REALstring value) {
  use<service::REALSetPropValueInteger>("REALSetPropValueInteger")(
      block, "Size", static_cast<RBInteger>(utf8Of(value).size()));
}

bool debugging = false;
RBBoolean getDebugging() {
  return debugging ? 1 : 0;
}
void setDebugging(RBBoolean on) {
  debugging = on != 0;
}

template <class Function>
REALproc proc(Function* function) {
  return reinterpret_cast<REALproc>(function);
}

REALmethodDefinition methods[] = {
    {proc(&echo), nullptr, "EchoZEL(s as String) as String", 4, 0, nullptr},
    {proc(&upper), nullptr, "UpperZEL(s as String) as String", 4, 0, nullptr},
    {proc(&add), nullptr, "AddZEL(a as Integer, b as Integer = 2) as Integer", 4, 0, nullptr},
    {proc(&negate), nullptr, "NotZEL(b as Boolean) as Boolean", 4, 0, nullptr},
    {proc(&half), nullptr, "HalfZEL(d as Double) as Double", 4, 0, nullptr},
    {proc(&swapColor), nullptr, "SwapZEL(c as Color) as Color", 4, 0, nullptr},
    {proc(&blockSize), nullptr, "SizeZEL(m as MemoryBlock) as Integer", 4, 0, nullptr},
    {proc(&copyToBlock), nullptr, "CopyZEL(data as ptr, size as Integer) as MemoryBlock", 4, 0,
     nullptr},
    {proc(&split), nullptr, "SplitZEL(s as String) as string()", 4, 0, nullptr},
    {proc(&fail), nullptr, "FailZEL(message as String) as String", 4, 0, nullptr},
    {proc(&leak), nullptr, "LeakZEL(s as String) as String", 4, 0, nullptr},
    {proc(&unleak), nullptr, "UnleakZEL() as Integer", 4, 0, nullptr},
    {proc(&log), nullptr, "LogZEL(s as String) as Integer", 4, 0, nullptr},
    {proc(&pickString), nullptr, "PickZEL(s as String) as Integer", 4, 0, nullptr},
    {proc(&pickBlock), nullptr, "PickZEL(m as MemoryBlock) as Integer", 4, 0, nullptr},
};

REALmethodDefinition extensionMethods[] = {
    {proc(&tagOf), proc(&setTag), "TagZEL(prefix as String = \"t\") as String", 0x308, 0, nullptr},
};

REALmethodDefinition moduleMethods[] = {
    {proc(&add), nullptr, "AddZEL(a as Integer, b as Integer = 2) as Integer", 20, 0, nullptr},
    {proc(&setTag), nullptr,
     "TagZEL(extends ref as MemoryBlock, prefix as String = \"t\", assigns value as String)", 20, 0,
     nullptr},
};

REALproperty moduleProperties[] = {
    {"", "Debugging", "Boolean", 0x26, proc(&getDebugging), proc(&setDebugging), 0, nullptr, 0,
     nullptr, 0, nullptr},
};

REALclassDefinition extension{};
REALmoduleDefinition module{};

}  // namespace

extern "C" ZEL_EXPORT void REALPluginMain(REALresolver hostResolver) {
  resolver = hostResolver;
  const double version = use<service::REALGetRBVersion>("REALGetRBVersion")();
  use<service::RegisterPluginVersion>("RegisterPluginVersion")(version >= 2013.04 ? 13 : 9);
  extension.version = kCurrentREALControlVersion;
  extension.name = "MemoryBlock";
  extension.methods = extensionMethods;
  extension.methodCount = 1;
  use<service::PluginRegisterClassExtension>("PluginRegisterClassExtension")(&extension);
  for (REALmethodDefinition& method : methods) {
    use<service::PluginRegisterMethod>("PluginRegisterMethod")(&method);
  }
  module.version = kCurrentREALControlVersion;
  module.name = "FakeModuleZEL";
  module.methods = moduleMethods;
  module.methodCount = 2;
  module.properties = moduleProperties;
  module.propertyCount = 1;
  module.mFlags = 4;
  use<service::PluginRegisterModule>("PluginRegisterModule")(&module);
}
