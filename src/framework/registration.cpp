#include "framework/registration.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

#include "framework/debug_log.h"
#include "framework/definition_checks.h"
#include "framework/host_api.h"
#include "framework/plugin_state.h"
#include "platform/platform.h"

namespace zel {
namespace {

// Declarations are rewritten in a buffer of 1000 bytes, terminator included.
constexpr std::size_t kDeclarationCapacity = 999;

// Written only on the loading thread during start-up; the host keeps pointers into it forever.
REALmoduleDefinition* gModule = nullptr;

RBBoolean debuggingGetter() {
  return debugEnabled() ? 1 : 0;
}

void debuggingSetter(RBBoolean value) {
  setDebugEnabled(value != 0);
  if (value != 0) debugLog("%s%s", kDebugPrefix, "ZEL debug logging enabled.");
}

REALattribute gHiddenAttribute{"Hidden", ""};
REALproperty gDebuggingProperty{nullptr,
                                "Debugging",
                                "Boolean",
                                flags::kPublic | flags::kConsoleSafe | flags::kRuntimeOnly,
                                reinterpret_cast<REALproc>(&debuggingGetter),
                                reinterpret_cast<REALproc>(&debuggingSetter),
                                0,
                                nullptr,
                                0,
                                nullptr,
                                1,
                                &gHiddenAttribute};

std::string capped(std::string text) {
  if (text.size() > kDeclarationCapacity) text.resize(kDeclarationCapacity);
  return text;
}

// A copy that lives as long as the process, as the host requires.
const char* permanentCopy(const std::string& text) noexcept {
  auto* copy = static_cast<char*>(platform::allocateZeroed(text.size() + 1));
  if (copy != nullptr) std::memcpy(copy, text.data(), text.size());
  return copy;
}

REALmethodDefinition* allocateRows(std::size_t count) noexcept {
  return static_cast<REALmethodDefinition*>(
      platform::allocateZeroed(count * sizeof(REALmethodDefinition) + 16));
}

REALmoduleDefinition* createModule(std::size_t rowCount) noexcept {
  auto* module =
      static_cast<REALmoduleDefinition*>(platform::allocateZeroed(sizeof(REALmoduleDefinition)));
  if (module == nullptr) {
    if (debugEnabled()) debugLogLabel("Warning: Failed to allocate memory for module definition.");
    return nullptr;
  }
  char name[100]{};
  std::snprintf(name, sizeof name, "%s%s", pluginState().partName, "GlobalsZEL");
  REALmethodDefinition* rows = allocateRows(rowCount);
  if (rows == nullptr) {
    if (debugEnabled()) debugLogLabel("Warning: Failed to allocate memory for method definitions.");
    platform::releaseBlock(module);
    return nullptr;
  }
  module->version = static_cast<std::uint32_t>(pluginState().sdkLevel);
  module->name = permanentCopy(name);
  module->methods = rows;
  module->properties = &gDebuggingProperty;
  module->propertyCount = 1;
  module->mFlags = flags::kConsoleSafe;
  return module;
}

// Appends rows to the module, creating it first when needed.
void appendToModule(std::span<const REALmethodDefinition> rows) noexcept {
  if (gModule == nullptr) {
    gModule = createModule(rows.size());
    if (gModule == nullptr) return;
  } else {
    REALmethodDefinition* grown = allocateRows(gModule->methodCount + rows.size());
    if (grown == nullptr) {
      if (debugEnabled())
        debugLogLabel("Warning: Failed to allocate memory for method definitions.");
      return;
    }
    std::copy_n(gModule->methods, gModule->methodCount, grown);
    platform::releaseBlock(gModule->methods);
    gModule->methods = grown;
  }
  std::copy(rows.begin(), rows.end(), gModule->methods + gModule->methodCount);
  gModule->methodCount += rows.size();
}

void adjustFlagsInPlace(std::uint32_t& value) noexcept {
  value = adjustedFlags(value, pluginState().hostVersion);
}

template <class Row>
void adjustRowFlags(Row* rows, std::size_t count) noexcept {
  if (rows == nullptr) return;
  for (std::size_t i = 0; i < count; ++i) {
    if constexpr (requires { rows[i].mFlags; })
      adjustFlagsInPlace(rows[i].mFlags);
    else
      adjustFlagsInPlace(rows[i].flags);
  }
}

void convertIntoModule(const REALclassDefinition& definition) {
  std::vector<REALmethodDefinition> rows;
  const std::span<const REALmethodDefinition> methods(
      definition.methods, definition.methods ? definition.methodCount : 0);
  for (const auto& method : methods) {
    if (method.declaration == nullptr) continue;
    const std::string extension = extensionFormDeclaration(method.declaration, definition.name);
    if (method.function != nullptr)
      rows.push_back({method.function, nullptr, permanentCopy(extension),
                      method.mFlags | flags::kGlobalScope, method.attributeCount,
                      method.attributes});
    if (method.setterFunction != nullptr) {
      const auto assignment = assignmentFormDeclaration(extension);
      if (!assignment) {
        if (debugEnabled())
          debugLogText("Error: Keine Klammer in der Deklaration", method.declaration);
        continue;
      }
      rows.push_back({method.setterFunction, nullptr, permanentCopy(*assignment),
                      method.mFlags | flags::kGlobalScope, method.attributeCount,
                      method.attributes});
    }
  }
  appendToModule(rows);
}

}  // namespace

std::uint32_t adjustedFlags(std::uint32_t value, double hostVersion) noexcept {
  if (hostVersion < kVersionWithTargetFlags &&
      (value & flags::kTargetMask) == flags::kConsoleWebDesktop) {
    value &= ~flags::kConsoleWebDesktop;
    value |= flags::kConsoleSafe;
  }
  if ((value & flags::kPluginMarker) != 0) {
    value &= ~flags::kPluginMarker;
    if (hostVersion >= kVersionWithConsoleFlag) value |= flags::kConsoleSafe;
  }
  return value;
}

std::string extensionFormDeclaration(std::string_view declaration, std::string_view className) {
  const std::string name(className);
  const auto cut = declaration.find_first_of("( ");
  if (cut == std::string_view::npos)
    return capped(std::string(declaration) + "(extends ref as " + name + ")");
  const std::string head(declaration.substr(0, cut));
  if (declaration[cut] == '(')
    return capped(head + "(extends ref as " + name + ", " +
                  std::string(declaration.substr(cut + 1)));
  return capped(head + "(extends ref as " + name + ")" + std::string(declaration.substr(cut)));
}

std::optional<std::string> assignmentFormDeclaration(std::string_view declaration) {
  if (const auto close = declaration.find(')'); close != std::string_view::npos)
    return capped(std::string(declaration.substr(0, close)) + ", assigns value" +
                  std::string(declaration.substr(close + 1)) + ")");
  if (const auto space = declaration.find(' '); space != std::string_view::npos)
    return capped(std::string(declaration.substr(0, space)) + "(assigns value" +
                  std::string(declaration.substr(space)) + ")");
  return std::nullopt;
}

bool registersIntoModule(double hostVersion) noexcept {
  return hostVersion >= kVersionWithModules && hostVersion < kVersionWithoutModules;
}

void registerClassExtension(REALclassDefinition* definition) noexcept {
  checkClassExtension(definition);
  if (definition == nullptr) return;
  adjustFlagsInPlace(definition->mFlags);
  adjustRowFlags(definition->methods, definition->methodCount);
  adjustRowFlags(definition->sharedMethods, definition->sharedMethodCount);
  adjustRowFlags(definition->properties, definition->propertyCount);
  adjustRowFlags(definition->sharedProperties, definition->sharedPropertyCount);
  if (registersIntoModule(pluginState().hostVersion)) {
    try {
      convertIntoModule(*definition);
    } catch (...) {
      if (debugEnabled())
        debugLogLabel("Warning: Failed to allocate memory for method definitions.");
    }
    return;
  }
  definition->version = static_cast<std::uint32_t>(pluginState().sdkLevel);
  host::PluginRegisterClassExtension(definition);
}

void registerGlobalMethods(REALmethodDefinition* methods, std::size_t count) noexcept {
  if (methods == nullptr) {
    if (debugEnabled()) debugLogLabel("Error: A method array registered is nil.");
    return;
  }
  if (count == 0) {
    if (debugEnabled()) debugLogLabel("Warning: A method array registered with count = 0.");
    return;
  }
  adjustRowFlags(methods, count);
  const std::span<REALmethodDefinition> rows(methods, count);
  if (registersIntoModule(pluginState().hostVersion)) {
    try {
      std::vector<REALmethodDefinition> moduleRows(rows.begin(), rows.end());
      for (auto& row : moduleRows) row.mFlags |= flags::kGlobalScope;
      appendToModule(moduleRows);
    } catch (...) {
      if (debugEnabled())
        debugLogLabel("Warning: Failed to allocate memory for method definitions.");
    }
    return;
  }
  for (auto& row : rows) {
    checkGlobalMethod(row);
    if (row.declaration == nullptr || row.function == nullptr) continue;
    host::PluginRegisterMethod(&row);
  }
}

void registerModule() noexcept {
  if (gModule == nullptr) return;
  checkModule(gModule);
  host::PluginRegisterModule(gModule);
}

const REALmoduleDefinition* preparedModule() noexcept {
  return gModule;
}

}  // namespace zel
