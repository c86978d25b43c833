// What the plug-in registers, captured as it hands it over.
#pragma once

#include <cstdint>

#include "sdk/host_types.h"

namespace zelhost::detail {

void registerClassExtension(const REALclassDefinition* definition);
void registerMethod(const REALmethodDefinition* definition);
void registerModule(const REALmoduleDefinition* definition);
void registerPluginVersion(int version);

// Changes whenever the registration is replaced, so that lookups cached from it can be dropped.
std::uint64_t registrationGeneration();

}  // namespace zelhost::detail
