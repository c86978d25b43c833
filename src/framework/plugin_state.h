// The process-wide plug-in state: filled once by REALPluginMain on the loading thread, read-only
// afterwards.
#pragma once

#include <cstdint>

#include "framework/debug_log.h"
#include "framework/host_api.h"
#include "sdk/host_types.h"

namespace zel {

struct PluginState {
  REALresolver resolver = nullptr;
  double hostVersion = 0.0;
  std::int32_t sdkLevel = 9;
  const char* versionBanner = nullptr;
  const char* partName = nullptr;
  std::uint32_t mainThreadId = 0;
};

const PluginState& pluginState() noexcept;

// Host version cut-overs.
inline constexpr double kVersionWithConsoleFlag = 2010.029;
inline constexpr double kVersionWithEncodedBuild = 2012.0;
inline constexpr double kVersionWithModules = 2013.0;
inline constexpr double kVersionSdk12 = 2013.03;
inline constexpr double kVersionSdk13 = 2013.04;
inline constexpr double kVersionWithTargetFlags = 2020.02;
inline constexpr double kVersionWithoutModules = 3000.0;

std::int32_t sdkLevelForHostVersion(double hostVersion) noexcept;
bool debugSwitchedOnBy(const char* value) noexcept;

}  // namespace zel

namespace zel::detail {
// Lets in-process tests of the static library walk the paths of older hosts.
void setHostVersionForTesting(double hostVersion) noexcept;
}  // namespace zel::detail

extern "C"
#if defined(_WIN32)
    __declspec(dllexport)
#endif
        void REALPluginMain(REALresolver resolver);
