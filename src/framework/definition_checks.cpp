#include "framework/definition_checks.h"

#include <cctype>
#include <cstdint>
#include <span>

#include "framework/debug_log.h"
#include "framework/plugin_state.h"
#include "platform/platform.h"

namespace zel {
namespace {

constexpr std::size_t kCountOutOfRange = 10000;
constexpr std::size_t kMaximumListed = 1000;

int asInt(std::size_t value) noexcept {
  return static_cast<int>(value);
}

// A count agrees with its array when a non-zero count has an array of at most 1000 entries and a
// zero count has none.
template <class Row>
bool countDisagrees(const Row* rows, std::size_t count) noexcept {
  return count != 0 ? rows == nullptr || count > kMaximumListed : rows != nullptr;
}

// The console bit among the target bits (flags::kTargetMask).
constexpr std::uint32_t kTargetConsole = 0x8;

bool consoleSafe(std::uint32_t flags) noexcept {
  return (flags & (flags::kConsoleSafe | kTargetConsole)) != 0;
}

const char* orEmpty(const char* text) noexcept {
  return text != nullptr ? text : "";
}

void checkAttributeEntries(const char* owner, const char* member, std::size_t count,
                           const REALattribute* attributes) noexcept {
  if (count > kCountOutOfRange) {
    debugLogFinding("Error: attribute count out of range for %s.%s: %d.", owner, member,
                    asInt(count));
    return;
  }
  if (attributes == nullptr) return;
  const auto checked = static_cast<std::uint16_t>(count);
  for (int index = 0; index < checked; ++index) {
    const REALattribute& attribute = attributes[index];
    if (attribute.name == nullptr)
      debugLogFinding("Error: %s.%s has an attribute without name! Index: %d", owner, member,
                      index);
    else if (attribute.value == nullptr)
      debugLogFinding("Error: %s.%s has an attribute without value! Name: %s Index: %d", owner,
                      member, attribute.name, index);
  }
}

void checkAttributes(const char* kind, const char* owner, const char* member, std::size_t count,
                     const REALattribute* attributes) noexcept {
  if (countDisagrees(attributes, count))
    debugLogFinding("Error: The %s %s.%s has the wrong attributeCount value: %d", kind, owner,
                    member, asInt(count));
  checkAttributeEntries(owner, member, count, attributes);
}

// What differs between the kinds of member rows.
struct MemberKind {
  const char* countMessage;
  const char* nullRowMessage;  // null when the kind has none
  const char* nilDeclarationMessage;
  const char* attributeKind;
};

constexpr MemberKind kMethodKind{"Error: method count out of range for %s: %d.",
                                 "Error: method %s.%d is NULL.",
                                 "Error: The method %s.%d has nil declaration.", "method"};
constexpr MemberKind kConstantKind{"Error: constant count out of range for %s: %d.",
                                   "Error: Constant %s.%d is NULL.",
                                   "Error: The constant %s.%d has nil declaration.", "constant"};
constexpr MemberKind kEventKind{"Error: event count out of range for %s: %d.", nullptr,
                                "Error: The event %s.%d has nil declaration.", "event"};
constexpr MemberKind kDelegateKind{"Error: delegate count out of range for %s: %d.", nullptr,
                                   "Error: The delegate %s.%d has nil declaration.", "delegate"};

void checkRowSpecifics(const REALmethodDefinition& row, const char* owner) noexcept {
  if (row.function == nullptr)
    debugLogFinding("Error: The method %s.%s has nil function.", owner, row.declaration);
}
void checkRowSpecifics(const REALdelegate& row, const char* owner) noexcept {
  if (row.flags == 0)
    debugLogFinding("Warning: The delegate %s.%s has 0 for flags.", owner, row.declaration);
}
void checkRowSpecifics(const REALconstant&, const char*) noexcept {}
void checkRowSpecifics(const REALevent&, const char*) noexcept {}

template <class Row>
void checkMembers(const MemberKind& kind, const char* owner, const Row* rows,
                  std::size_t count) noexcept {
  if (count > kCountOutOfRange) {
    debugLogFinding(kind.countMessage, owner, asInt(count));
    return;
  }
  if (count == 0) return;
  if (rows == nullptr) {
    if (kind.nullRowMessage != nullptr) debugLogFinding(kind.nullRowMessage, owner, 0);
    return;
  }
  for (std::size_t index = 0; index < count; ++index) {
    const Row& row = rows[index];
    if (row.declaration == nullptr) {
      debugLogFinding(kind.nilDeclarationMessage, owner, asInt(index));
      continue;
    }
    checkRowSpecifics(row, owner);
    checkAttributes(kind.attributeKind, owner, row.declaration, row.attributeCount, row.attributes);
  }
}

bool isDouble(const char* type) noexcept {
  return platform::compareIgnoringCase(type, "double", 7) == 0;
}

void checkPropertyEnums(const char* owner, const REALproperty& property) noexcept {
  const char* name = property.name;
  if (property.enumCount > kCountOutOfRange) {
    debugLogFinding("Error: property enum count out of range for %s.%s: %d.", owner, name,
                    asInt(property.enumCount));
    return;
  }
  if (property.enumCount == 0) return;
  if (property.enumEntries == nullptr) {
    debugLogFinding("Error: property enum is nil for %s.%s: %d.", owner, name,
                    asInt(property.enumCount));
    return;
  }
  for (std::size_t index = 0; index < property.enumCount; ++index) {
    const char* value = property.enumEntries[index];
    if (value == nullptr)
      debugLogFinding("Error: The enum value %i in property %s.%s has nil value.", asInt(index),
                      owner, name);
    else if (value[0] == ' ')
      debugLogFinding("Error: The enum value %i in property %s.%s has extra space in value.",
                      asInt(index), owner, name);
  }
}

void checkProperties(const char* owner, const REALproperty* rows, std::size_t count) noexcept {
  if (count > kCountOutOfRange) {
    debugLogFinding("Error: property count out of range for %s: %d.", owner, asInt(count));
    return;
  }
  if (count == 0 || rows == nullptr) return;
  for (std::size_t index = 0; index < count; ++index) {
    const REALproperty& property = rows[index];
    if (property.name == nullptr) {
      debugLogFinding("Error: The property %s.%d has nil name.", owner, asInt(index));
      continue;
    }
    const char* name = property.name;
    if (property.getter == nullptr)
      debugLogFinding("Error: The property %s.%s has nil getter.", owner, name);
    if (property.type == nullptr) {
      debugLogFinding("Error: The property %s.%d has nil type.", owner, asInt(index));
    } else if (isDouble(property.type)) {
      if (property.getter == kPlainOffsetAccessor)
        debugLogFinding("Error: The property %s.%s needs custom getter.", owner, name);
      if (property.setter == kPlainOffsetAccessor)
        debugLogFinding("Error: The property %s.%s needs custom setter.", owner, name);
    } else if ((property.getter == kPlainOffsetAccessor ||
                property.setter == kPlainOffsetAccessor) &&
               property.param % 4 != 0) {
      debugLogFinding("Error: The property %s.%s has unaligned offset %d.", owner, name,
                      property.param);
    }
    if (property.editor != nullptr)
      debugLogFinding("Error: The property %s.%s has editor.", owner, name);
    if (countDisagrees(property.enumEntries, property.enumCount))
      debugLogFinding("Error: The property %s.%s has wrong enumCount: %d", owner, name,
                      asInt(property.enumCount));
    if (countDisagrees(property.attributes, property.attributeCount))
      debugLogFinding("Error: The property %s.%s has attributes: %d", owner, name,
                      asInt(property.attributeCount));
    checkPropertyEnums(owner, property);
    checkAttributes("property", owner, name, property.attributeCount, property.attributes);
  }
}

template <class Row>
std::span<const Row> rowsOf(const Row* rows, std::size_t count) noexcept {
  if (rows == nullptr || count > kCountOutOfRange) return {};
  return {rows, count};
}

void checkConsoleSafeMethods(const char* label, bool ownerSafe,
                             std::span<const REALmethodDefinition> methods) noexcept {
  if (ownerSafe) return;
  for (const auto& method : methods)
    if (consoleSafe(method.mFlags)) debugLogText(label, orEmpty(method.declaration));
}

void checkConsoleSafeProperties(const char* label, bool ownerSafe,
                                std::span<const REALproperty> properties) noexcept {
  if (ownerSafe) return;
  for (const auto& property : properties) {
    const bool exempt = property.name != nullptr && std::string_view(property.name) == "Debugging";
    if (consoleSafe(property.flags) && !exempt) debugLogText(label, orEmpty(property.name));
  }
}

void checkPropertyOffsets(const char* owner, std::span<const REALproperty> properties,
                          std::size_t dataSize) noexcept {
  for (const auto& property : properties) {
    const bool plain =
        property.getter == kPlainOffsetAccessor || property.setter == kPlainOffsetAccessor;
    if (plain && property.param >= 0 && static_cast<std::size_t>(property.param) > dataSize)
      debugLogFinding("Error: Offset for variable too big: %s.%s %d %d", owner,
                      orEmpty(property.name), property.param, asInt(dataSize));
  }
}

template <class Row>
void reportDisagreement(const char* format, const char* owner, const Row* rows,
                        std::size_t count) noexcept {
  if (countDisagrees(rows, count)) debugLogFinding(format, owner, asInt(count));
}

template <class Row>
void reportPresence(const char* format, const char* owner, const Row* rows,
                    std::size_t count) noexcept {
  if (count != 0 || rows != nullptr) debugLogFinding(format, owner, asInt(count));
}

void reportCount(const char* format, const char* owner, std::size_t count) noexcept {
  if (count != 0) debugLogFinding(format, owner, asInt(count));
}

bool partNameMissing(const char* owner) noexcept {
  if (pluginState().partName != nullptr) return false;
  debugLogFinding("Error: gpartname is nil!? %s", orEmpty(owner));
  return true;
}

struct PrologueMessages {
  const char* nil;
  const char* wrongVersion;
  const char* noName;
};

constexpr PrologueMessages kClassMessages{
    "Error: A class extension registered is nil.",
    "Error: The class extension %s has the wrong kCurrentREALControlVersion: %d vs. %d",
    "Error: A class extension without name."};

constexpr PrologueMessages kModuleMessages{
    "Error: A module registered is nil.",
    "Error: The module %s has the wrong kCurrentREALControlVersion: %d vs. %d",
    "Error: A module without name."};

// The checks every definition starts with. Returns the name to report under, or nullptr when
// the rest cannot be checked.
template <class Definition, class VersionAccepted>
const char* checkPrologue(const Definition* definition, const PrologueMessages& messages,
                          VersionAccepted versionAccepted) noexcept {
  if (definition == nullptr) {
    debugLogFinding("%s", messages.nil);
    return nullptr;
  }
  if (partNameMissing(definition->name)) return nullptr;
  if (!versionAccepted(definition->version))
    debugLogFinding(messages.wrongVersion, orEmpty(definition->name),
                    static_cast<int>(definition->version),
                    static_cast<int>(kCurrentREALControlVersion));
  if (definition->name == nullptr) debugLogFinding("%s", messages.noName);
  return orEmpty(definition->name);
}

void checkClassConsoleSafety(const REALclassDefinition& c) noexcept {
  const bool safe = consoleSafe(c.mFlags);
  checkConsoleSafeMethods("Console-safe method in console-unsafe class:", safe,
                          rowsOf(c.methods, c.methodCount));
  checkConsoleSafeMethods("Console-safe shared method in console-unsafe class:", safe,
                          rowsOf(c.sharedMethods, c.sharedMethodCount));
  checkConsoleSafeProperties("Console-safe property in console-unsafe class:", safe,
                             rowsOf(c.properties, c.propertyCount));
  checkConsoleSafeProperties("Console-safe shared property in console-unsafe class:", safe,
                             rowsOf(c.sharedProperties, c.sharedPropertyCount));
}

// The record's own fields and which member lists it may have at all.
void checkClassRecord(const char* name, const REALclassDefinition& c) noexcept {
  if (c.superName != nullptr)
    debugLogFinding("Error: A class extension can't have super name: %s", c.superName);
  if (c.dataSize != 0)
    debugLogFinding("Error: The class extension %s has the dataSize value: %d", name,
                    asInt(c.dataSize));
  if (c.forSystemUse != 0)
    debugLogFinding("Error: The class extension %s has the wrong forSystemUse value: %d", name,
                    static_cast<int>(c.forSystemUse));

  reportDisagreement("Error: The class extension %s has the wrong propertyCount value: %d", name,
                     c.properties, c.propertyCount);
  reportDisagreement("Error: The class extension %s has the wrong methodCount value: %d", name,
                     c.methods, c.methodCount);
  reportDisagreement("Error: The class extension %s has wrong attributes: %d", name, c.attributes,
                     c.attributeCount);

  reportPresence("Error: The class extension %s has events: %d", name, c.events, c.eventCount);
  reportPresence("Error: The class extension %s has event instances: %d", name, c.eventInstances,
                 c.eventInstanceCount);
  reportPresence("Error: The class extension %s has constants: %d", name, c.constants,
                 c.constantCount);
  reportPresence("Error: The class extension %s has shared Properties: %d", name,
                 c.sharedProperties, c.sharedPropertyCount);
  reportPresence("Error: The class extension %s has shared Methods: %d", name, c.sharedMethods,
                 c.sharedMethodCount);
  reportPresence("Error: The class extension %s has delegates %d", name, c.delegates,
                 c.delegateCount);
  reportPresence("Error: The class extension %s has enums: %d", name, c.enums, c.enumCount);
}

void checkClassMembers(const char* name, const REALclassDefinition& c) noexcept {
  checkMembers(kMethodKind, name, c.methods, c.methodCount);
  checkProperties(name, c.properties, c.propertyCount);
  checkMembers(kConstantKind, name, c.constants, c.constantCount);
  checkMembers(kEventKind, name, c.events, c.eventCount);
  checkMembers(kMethodKind, name, c.sharedMethods, c.sharedMethodCount);
  checkProperties(name, c.sharedProperties, c.sharedPropertyCount);
  checkMembers(kDelegateKind, name, c.delegates, c.delegateCount);

  reportCount("Warning: The class extension %s has the propertyCount value: %d", name,
              c.propertyCount);
  reportCount("Warning: The class extension %s has the constantCount value: %d", name,
              c.constantCount);
  reportCount("Warning: The class extension %s has the eventCount value: %d", name, c.eventCount);
  reportCount("Warning: The class extension %s has the sharedProperties value: %d", name,
              c.sharedPropertyCount);
  reportCount("Warning: The class extension %s has the sharedMethods value: %d", name,
              c.sharedMethodCount);
}

}  // namespace

void checkClassExtension(const REALclassDefinition* definition) noexcept {
  const char* name = checkPrologue(definition, kClassMessages, [](std::uint32_t version) {
    return version == kCurrentREALControlVersion;
  });
  if (name == nullptr) return;
  const REALclassDefinition& c = *definition;
  checkClassRecord(name, c);
  checkClassMembers(name, c);
  if (std::islower(static_cast<unsigned char>(name[0])))
    debugLogFinding("Error: The class extension name %s does not start with capital letter.", name);

  checkClassConsoleSafety(c);
  checkPropertyOffsets(name, rowsOf(c.properties, c.propertyCount), c.dataSize);
}

void checkModule(const REALmoduleDefinition* definition) noexcept {
  const char* name = checkPrologue(definition, kModuleMessages, [](std::uint32_t version) {
    return version == kCurrentREALControlVersion ||
           version == static_cast<std::uint32_t>(pluginState().sdkLevel);
  });
  if (name == nullptr) return;
  const REALmoduleDefinition& m = *definition;

  reportDisagreement("Error: The module %s has the wrong propertyCount value: %d", name,
                     m.properties, m.propertyCount);
  reportDisagreement("Error: The module %s has the wrong methodCount value: %d", name, m.methods,
                     m.methodCount);
  reportDisagreement("Error: The module %s has the wrong structureCount value: %d", name,
                     m.structures, m.structureCount);
  reportDisagreement("Error: The module %s has the wrong enumCount value: %d", name, m.enums,
                     m.enumCount);
  reportDisagreement("Error: The module %s has the wrong attributeCount value: %d", name,
                     m.attributes, m.attributeCount);
  reportDisagreement("Error: The module %s has the wrong delegateCount value: %d", name,
                     m.delegates, m.delegateCount);
  if (m.methods == nullptr && m.methodCount != 0)
    debugLogFinding("Error: method array is nil while count is not zero!");
  if (m.properties == nullptr && m.propertyCount != 0)
    debugLogFinding("Error: property array is nil while count is not zero!");
  if (m.enums == nullptr && m.enumCount != 0)
    debugLogFinding("Error: enum array is nil while count is not zero!");

  const bool safe = consoleSafe(m.mFlags);
  checkConsoleSafeMethods("Console-safe method in console-unsafe module:", safe,
                          rowsOf(m.methods, m.methodCount));
  checkConsoleSafeProperties("Console-safe property in console-unsafe module:", safe,
                             rowsOf(m.properties, m.propertyCount));

  checkMembers(kConstantKind, name, m.constants, m.constantCount);
  checkMembers(kDelegateKind, name, m.delegates, m.delegateCount);
  checkMembers(kMethodKind, name, m.methods, m.methodCount);
  checkProperties(name, m.properties, m.propertyCount);
}

void checkGlobalMethod(const REALmethodDefinition& method) noexcept {
  if (method.declaration == nullptr) {
    debugLogFinding("Error: A method without declaration.");
    return;
  }
  if (method.function == nullptr)
    debugLogFinding("Error: The method %s has no function.", method.declaration);
  if (countDisagrees(method.attributes, method.attributeCount))
    debugLogFinding("Error: The method %s has the wrong attributeCount value: %d",
                    method.declaration, asInt(method.attributeCount));
  checkAttributeEntries(orEmpty(pluginState().partName), method.declaration, method.attributeCount,
                        method.attributes);
}

}  // namespace zel
