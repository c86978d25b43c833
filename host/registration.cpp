#include "registration.h"

#include <atomic>
#include <mutex>
#include <stdexcept>

#include "objects.h"
#include "os.h"
#include "service_table.h"
#include "stand_in_host.h"

namespace zelhost {
namespace detail {
namespace {

std::mutex registrationMutex;
Registration current;
std::atomic<std::uint64_t> generation{0};
HostConfig currentConfig;

std::string text(const char* value, const char* what) {
  if (value != nullptr) return value;
  reportProtocolError(std::string("registered ") + what + " without a declaration");
  return {};
}

RegisteredMember methodMember(RegisteredMember::Kind kind, std::string owner,
                              const REALmethodDefinition& row) {
  std::string declaration = text(row.declaration, "method");
  Declaration parsed = parseDeclaration(declaration);
  return {kind,         std::move(owner),   std::move(declaration), row.mFlags,
          row.function, row.setterFunction, std::move(parsed)};
}

void append(std::vector<RegisteredMember> members) {
  const std::lock_guard lock(registrationMutex);
  for (RegisteredMember& member : members) current.members.push_back(std::move(member));
  ++generation;
}

}  // namespace

void registerClassExtension(const REALclassDefinition* definition) {
  if (definition == nullptr) return reportProtocolError("null class extension");
  const std::string owner = text(definition->name, "class extension");
  std::vector<RegisteredMember> members;
  for (std::size_t i = 0; i < definition->methodCount; ++i) {
    members.push_back(
        methodMember(RegisteredMember::Kind::ClassExtensionMethod, owner, definition->methods[i]));
  }
  {
    const std::lock_guard lock(registrationMutex);
    current.classExtensions.push_back(owner);
  }
  append(std::move(members));
}

void registerMethod(const REALmethodDefinition* definition) {
  if (definition == nullptr) return reportProtocolError("null method definition");
  append({methodMember(RegisteredMember::Kind::Method, {}, *definition)});
}

void registerModule(const REALmoduleDefinition* definition) {
  if (definition == nullptr) return reportProtocolError("null module definition");
  const std::string owner = text(definition->name, "module");
  std::vector<RegisteredMember> members;
  for (std::size_t i = 0; i < definition->methodCount; ++i) {
    members.push_back(
        methodMember(RegisteredMember::Kind::ModuleMethod, owner, definition->methods[i]));
  }
  for (std::size_t i = 0; i < definition->propertyCount; ++i) {
    const REALproperty& property = definition->properties[i];
    std::string declaration =
        text(property.name, "property") + " as " + text(property.type, "property");
    Declaration parsed = parseDeclaration(declaration);
    members.push_back({RegisteredMember::Kind::ModuleProperty, owner, std::move(declaration),
                       property.flags, property.getter, property.setter, std::move(parsed)});
  }
  {
    const std::lock_guard lock(registrationMutex);
    current.modules.push_back(owner);
  }
  append(std::move(members));
}

void registerPluginVersion(int version) {
  const std::lock_guard lock(registrationMutex);
  current.pluginVersions.push_back(version);
}

std::uint64_t registrationGeneration() {
  return generation;
}

}  // namespace detail

void configure(const HostConfig& hostConfig) {
  detail::currentConfig = hostConfig;
  detail::resetServiceTable();
  detail::resetStyledTextFaults();
  captureLog(false);
  if (REALobject pending = detail::takeRaisedObject()) detail::releaseObject(pending, "configure");
  const std::lock_guard lock(detail::registrationMutex);
  detail::current = {};
  ++detail::generation;
}

const HostConfig& config() {
  return detail::currentConfig;
}

const Registration& loadPlugin(const std::string& path) {
  void* library = os::loadFreshLibrary(path);
  using Entry = void (*)(REALresolver);
  auto entry = reinterpret_cast<Entry>(os::findSymbol(library, "REALPluginMain"));
  if (entry == nullptr) throw std::runtime_error(path + " exports no REALPluginMain");
  {
    const std::lock_guard lock(detail::registrationMutex);
    detail::current = {};
    ++detail::generation;
  }
  entry(&resolve);
  return detail::current;
}

const Registration& registration() {
  return detail::current;
}

}  // namespace zelhost
