// Checks of the definition tables before they are handed to the host. Findings go to the debug
// log; nothing here stops registration or changes a table.
#pragma once

#include "sdk/host_types.h"

namespace zel {

void checkClassExtension(const REALclassDefinition* definition) noexcept;
void checkModule(const REALmoduleDefinition* definition) noexcept;
// A global method registered on its own.
void checkGlobalMethod(const REALmethodDefinition& method) noexcept;

}  // namespace zel
