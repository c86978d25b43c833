// Host objects: reference-counted instances of classes that have properties by name and methods by
// declaration. Classes are declared as data (ClassInfo) so that new host classes only add a table.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/host_types.h"
#include "stand_in_host.h"

namespace zelhost::detail {

enum class PropertyType { Boolean, Integer, Color, String };

// Boolean, Integer and Color live in `number`; a String property holds one reference on `string`.
struct PropertyValue {
  RBInteger number = 0;
  REALstring string = nullptr;
};

struct HostObject;

struct PropertySpec {
  std::string name;
  PropertyType type;
  // Computed properties; plain ones are stored in the object.
  std::function<PropertyValue(HostObject&)> read = nullptr;
  std::function<void(HostObject&, const PropertyValue&)> write = nullptr;
  // When it answers true the class behaves as if it had no such property (a fault tests switch on).
  bool (*missing)() = nullptr;
};

struct MethodSpec {
  std::string declaration;
  void* function;  // takes the object first
};

// What an instance keeps beyond its plain properties (a block's bytes, an array's items).
struct ObjectData {
  virtual ~ObjectData() = default;
};

struct ClassInfo {
  std::string name;
  std::vector<PropertySpec> properties;
  std::vector<MethodSpec> methods;
  std::function<std::unique_ptr<ObjectData>()> makeData = nullptr;
};

struct HostObject {
  std::uint32_t magic;
  std::int32_t references;  // guarded by the object registry
  const ClassInfo* classInfo;
  std::vector<PropertyValue> values;  // one per property of the class
  std::unique_ptr<ObjectData> data;
};

// Classes by name, ignoring case; null for an unknown class.
const ClassInfo* findClass(std::string_view name);

REALobject createObject(const ClassInfo& classInfo);
// The live object behind a handle; null (and a protocol error naming `context`) otherwise.
HostObject* liveObject(REALobject o, const char* context);
void retainObject(REALobject o, const char* context);
void releaseObject(REALobject o, const char* context);
int liveObjectCount();

template <class Data>
Data* objectData(REALobject o, const char* context) {
  HostObject* object = liveObject(o, context);
  return object ? dynamic_cast<Data*>(object->data.get()) : nullptr;
}

// False when the object has no property of that name and type. A string read comes +1.
bool readProperty(REALobject o, std::string_view name, PropertyType type, PropertyValue& value);
// Integer properties also take a Color value and Color ones an Integer (the UInt32 setter).
bool writeProperty(REALobject o, std::string_view name, PropertyType type,
                   const PropertyValue& value);

void* findObjectMethod(REALobject o, std::string_view declaration);
void* findGlobalMethod(std::string_view declaration);

// ---- the classes ---------------------------------------------------------------------------

std::vector<ClassInfo> memoryBlockClasses();
std::vector<ClassInfo> exceptionClasses();
std::vector<ClassInfo> arrayClasses();
std::vector<ClassInfo> styledTextClasses();
void resetStyledTextFaults();

struct MemoryBlockData : ObjectData {
  std::unique_ptr<std::uint8_t[]> bytes = std::make_unique<std::uint8_t[]>(1);
  RBInteger size = 0;
  bool withoutData = false;
};

struct StringArrayData : ObjectData {
  std::vector<REALstring> items;  // one reference each
  ~StringArrayData() override;
};

inline constexpr std::string_view kStringArrayClass = "String()";

// ---- exceptions ----------------------------------------------------------------------------

// Raises `exception` (the host takes its own reference): into the innermost
// PluginCallFunctionWithExceptionHandler of this thread, else for the caller to see.
void raiseException(REALobject exception);
// A new exception object of `className` with its Message set (UTF-8), itself not raised: +1.
REALobject makeException(std::string_view className, std::string_view message);
REALobject runWithExceptionHandler(service::ExceptionHandledFunction function, void* context);
// The exception pending for the caller of this thread (+1, transferred), or null.
REALobject takeRaisedObject();
RaisedException describeException(REALobject exception);

}  // namespace zelhost::detail
