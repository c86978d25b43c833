// Hands the definition tables to the host, adapted to its version: between 2013.0 and 3000.0
// everything goes into one module and the class extension becomes global extension methods.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/host_types.h"

namespace zel {

std::uint32_t adjustedFlags(std::uint32_t flags, double hostVersion) noexcept;

// "Name(params) as T" with the class as first parameter: "Name(extends ref as C, params) as T".
std::string extensionFormDeclaration(std::string_view declaration, std::string_view className);
// The result type moves into an "assigns value" parameter; nullopt when there is no ')' or space.
std::optional<std::string> assignmentFormDeclaration(std::string_view declaration);

bool registersIntoModule(double hostVersion) noexcept;

void registerClassExtension(REALclassDefinition* definition) noexcept;
void registerGlobalMethods(REALmethodDefinition* methods, std::size_t count) noexcept;
void registerModule() noexcept;

// The module prepared by the registrations above, null when none was needed.
const REALmoduleDefinition* preparedModule() noexcept;

}  // namespace zel
