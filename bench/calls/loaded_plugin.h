// The built plug-in, loaded once per process: every call benchmark calls into the same instance,
// so that one benchmark's loading never drops the functions another has bound.
#pragma once

#include <string_view>

#include "stand_in_host.h"

namespace zelbench {

// True when the loaded plug-in registered `declaration`.
inline bool pluginRegisters(std::string_view declaration) {
  static const bool loaded = [] {
    zelhost::configure({});
    zelhost::loadPlugin(ZEL_PLUGIN_PATH);
    return true;
  }();
  return loaded && zelhost::findMethod(declaration) != nullptr;
}

}  // namespace zelbench
