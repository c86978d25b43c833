// What the plug-in offers, supplied by the composition root (method_table.cpp) so that the
// framework depends on no function family.
#pragma once

#include <span>

#include "sdk/host_types.h"

namespace zel {

struct PluginDefinitions {
  REALclassDefinition* classExtension;
  std::span<REALmethodDefinition> globalMethods;
  void (*buildRuntimeTables)();  // start-up work done only in a built application; may be null
};

PluginDefinitions pluginDefinitions() noexcept;

}  // namespace zel
