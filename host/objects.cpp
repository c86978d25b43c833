#include "objects.h"

#include <strings.h>

#include <stdexcept>

#include "encodings.h"
#include "host_strings.h"
#include "live_registry.h"
#include "service_table.h"

namespace zelhost {
namespace detail {
namespace {

constexpr std::uint32_t kObjectMagic = 0x4F424A54;

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

const std::vector<ClassInfo>& classes() {
  static const std::vector<ClassInfo> all = [] {
    std::vector<ClassInfo> table;
    for (auto provider : {memoryBlockClasses, exceptionClasses, arrayClasses, styledTextClasses}) {
      for (ClassInfo& classInfo : provider()) table.push_back(std::move(classInfo));
    }
    return table;
  }();
  return all;
}

LiveRegistry<HostObject, REALobject>& liveObjects() {
  static LiveRegistry<HostObject, REALobject> registry("object");
  return registry;
}

void destroy(HostObject* object) {
  for (const PropertyValue& value : object->values) {
    if (value.string != nullptr) releaseString(value.string, "object property");
  }
  delete object;
}

// Index of the property, or -1.
int propertyIndex(const ClassInfo& classInfo, std::string_view name) {
  for (std::size_t i = 0; i < classInfo.properties.size(); ++i) {
    const PropertySpec& spec = classInfo.properties[i];
    if (equalIgnoringCase(spec.name, name) && !(spec.missing && spec.missing())) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

bool typesAgree(PropertyType declared, PropertyType asked) {
  if (declared == asked) return true;
  return (declared == PropertyType::Integer && asked == PropertyType::Color) ||
         (declared == PropertyType::Color && asked == PropertyType::Integer);
}

RBInteger lenB(REALstring s) {
  if (s == nullptr) return 0;
  const StringHeader* string = liveString(s, "LenB");
  return string ? static_cast<RBInteger>(string->length) : 0;
}

RBInteger len(REALstring s) {
  if (s == nullptr) return 0;
  const StringHeader* string = liveString(s, "Len");
  return string ? static_cast<RBInteger>(decodeText(string->view(), string->encoding).size()) : 0;
}

const std::vector<MethodSpec>& globalMethods() {
  static const std::vector<MethodSpec> methods = {
      {"LenB( s as string ) as integer", reinterpret_cast<void*>(&lenB)},
      {"Len(s as string) as integer", reinterpret_cast<void*>(&len)},
  };
  return methods;
}

void* findByDeclaration(const std::vector<MethodSpec>& methods, std::string_view declaration) {
  const Declaration wanted = parseDeclaration(declaration);
  for (const MethodSpec& method : methods) {
    if (sameSignature(parseDeclaration(method.declaration), wanted)) return method.function;
  }
  return nullptr;
}

}  // namespace

const ClassInfo* findClass(std::string_view name) {
  for (const ClassInfo& classInfo : classes()) {
    if (equalIgnoringCase(classInfo.name, name)) return &classInfo;
  }
  return nullptr;
}

REALobject createObject(const ClassInfo& classInfo) {
  auto* object = new HostObject{kObjectMagic, 1, &classInfo,
                                std::vector<PropertyValue>(classInfo.properties.size()),
                                classInfo.makeData ? classInfo.makeData() : nullptr};
  liveObjects().add(object);
  return reinterpret_cast<REALobject>(object);
}

HostObject* liveObject(REALobject o, const char* context) {
  return liveObjects().find(o, context);
}

void retainObject(REALobject o, const char* context) {
  liveObjects().retain(o, context);
}

void releaseObject(REALobject o, const char* context) {
  if (liveObjects().release(o, context)) destroy(reinterpret_cast<HostObject*>(o));
}

int liveObjectCount() {
  return liveObjects().size();
}

bool readProperty(REALobject o, std::string_view name, PropertyType type, PropertyValue& value) {
  HostObject* object = liveObject(o, "property read");
  if (object == nullptr) return false;
  const int index = propertyIndex(*object->classInfo, name);
  if (index < 0) return false;
  const PropertySpec& spec = object->classInfo->properties[static_cast<std::size_t>(index)];
  if (spec.type != type) return false;
  value = spec.read ? spec.read(*object) : object->values[static_cast<std::size_t>(index)];
  if (value.string != nullptr) retainString(value.string, "property read");
  return true;
}

bool writeProperty(REALobject o, std::string_view name, PropertyType type,
                   const PropertyValue& value) {
  HostObject* object = liveObject(o, "property write");
  if (object == nullptr) return false;
  const int index = propertyIndex(*object->classInfo, name);
  if (index < 0) return false;
  const PropertySpec& spec = object->classInfo->properties[static_cast<std::size_t>(index)];
  if (!typesAgree(spec.type, type)) return false;
  if (spec.write) {
    spec.write(*object, value);
    return true;
  }
  PropertyValue& stored = object->values[static_cast<std::size_t>(index)];
  if (value.string != nullptr) retainString(value.string, "property write");
  if (stored.string != nullptr) releaseString(stored.string, "property write");
  stored = value;
  if (spec.type == PropertyType::Boolean) stored.number = stored.number != 0;
  if (spec.type == PropertyType::Color) stored.number = static_cast<RBColor>(stored.number);
  return true;
}

void* findObjectMethod(REALobject o, std::string_view declaration) {
  const HostObject* object = liveObject(o, "REALLoadObjectMethod");
  return object ? findByDeclaration(object->classInfo->methods, declaration) : nullptr;
}

void* findGlobalMethod(std::string_view declaration) {
  return findByDeclaration(globalMethods(), declaration);
}

StringArrayData::~StringArrayData() {
  for (REALstring item : items) {
    if (item != nullptr) releaseString(item, "array item");
  }
}

}  // namespace detail

REALobject newInstance(const char* name) {
  const detail::ClassInfo* classInfo = detail::findClass(name ? name : "");
  return classInfo ? detail::createObject(*classInfo) : nullptr;
}

void retain(REALobject o) {
  if (o != nullptr) detail::retainObject(o, "retain");
}

void release(REALobject o) {
  if (o != nullptr) detail::releaseObject(o, "release");
}

void release(REALarray a) {
  release(reinterpret_cast<REALobject>(a));
}

int referenceCount(REALobject o) {
  return o == nullptr ? 0 : detail::liveObjects().references(o);
}

std::string className(REALobject o) {
  if (o == nullptr) return {};
  const detail::HostObject* object = detail::liveObject(o, "className");
  return object ? object->classInfo->name : std::string();
}

REALobject makeMemoryBlock(std::string_view bytes) {
  REALobject block = newInstance("MemoryBlock");
  auto* data = detail::objectData<detail::MemoryBlockData>(block, "makeMemoryBlock");
  if (data == nullptr) throw std::logic_error("MemoryBlock without its data");
  data->bytes = std::make_unique<std::uint8_t[]>(bytes.size() + 1);
  std::copy(bytes.begin(), bytes.end(), data->bytes.get());
  data->size = static_cast<RBInteger>(bytes.size());
  return block;
}

REALobject makeMemoryBlockWithoutData(RBInteger size) {
  REALobject block = makeMemoryBlock(std::string(static_cast<std::size_t>(size), '\0'));
  if (auto* data =
          detail::objectData<detail::MemoryBlockData>(block, "makeMemoryBlockWithoutData")) {
    data->withoutData = true;
  }
  return block;
}

std::string memoryBlockBytes(REALobject block) {
  if (block == nullptr) return {};
  const auto* data = detail::objectData<detail::MemoryBlockData>(block, "memoryBlockBytes");
  if (data == nullptr) return {};
  return {reinterpret_cast<const char*>(data->bytes.get()), static_cast<std::size_t>(data->size)};
}

std::vector<std::optional<std::string>> stringArrayItems(REALarray a) {
  std::vector<std::optional<std::string>> items;
  if (a == nullptr) return items;
  const auto* data =
      detail::objectData<detail::StringArrayData>(reinterpret_cast<REALobject>(a), "array");
  if (data == nullptr) return items;
  for (REALstring item : data->items) {
    items.push_back(item ? std::optional(stringBytes(item)) : std::nullopt);
  }
  return items;
}

}  // namespace zelhost
