#include "framework/plugin_state.h"

#include <cstdlib>
#include <ctime>
#include <string_view>

#include "framework/definitions.h"
#include "framework/registration.h"
#include "platform/platform.h"

namespace zel {
namespace {

PluginState gState;

constexpr const char* kVersionBanner = "$$ Plugin version: 26.0 (2026) $$";
constexpr const char* kPartName = "String";

void warnAboutSpaces(const char* partName) noexcept {
  for (const char c : std::string_view(partName))
    if (c == ' ') debugLogText("Warning: plugin name containts space character", partName);
}

void initialise() noexcept {
  gState.versionBanner = kVersionBanner;
  gState.partName = kPartName;
  try {
    const auto value = platform::environmentVariable("ZELDEBUG");
    if (value && debugSwitchedOnBy(value->c_str())) setDebugEnabled(true);
  } catch (...) {
    // No environment, no log.
  }
  gState.mainThreadId = platform::currentThreadId();
  const bool inRuntime = host::REALinRuntime();
  if (debugEnabled() && !inRuntime)
    debugLog("Loading %s in Xojo %.2f and plugin SDK version %d...", gState.partName,
             gState.hostVersion, gState.sdkLevel);
  warnAboutSpaces(gState.partName);

  const PluginDefinitions definitions = pluginDefinitions();
  if (inRuntime) {
    std::srand(static_cast<unsigned>(std::time(nullptr) + platform::currentProcessId() * 17));
    try {
      if (definitions.buildRuntimeTables != nullptr) definitions.buildRuntimeTables();
    } catch (...) {
      // Without its tables a function degrades; start-up itself never fails.
      if (debugEnabled()) debugLogLabel("Warning: failed to build the run-time tables.");
    }
  }
  registerClassExtension(definitions.classExtension);
  registerGlobalMethods(definitions.globalMethods.data(), definitions.globalMethods.size());
  registerModule();
}

}  // namespace

const PluginState& pluginState() noexcept {
  return gState;
}

std::int32_t sdkLevelForHostVersion(double hostVersion) noexcept {
  if (hostVersion >= kVersionSdk13) return 13;
  if (hostVersion >= kVersionSdk12) return 12;
  if (hostVersion >= kVersionWithModules) return 11;
  if (hostVersion >= kVersionWithEncodedBuild) return 10;
  return 9;
}

bool debugSwitchedOnBy(const char* value) noexcept {
  for (const char* word : {"1", "true", "yes"}) {
    const std::size_t length = std::string_view(word).size();
    if (std::string_view(value).size() == length &&
        platform::compareIgnoringCase(value, word, length) == 0)
      return true;
  }
  return false;
}

namespace detail {
void setHostVersionForTesting(double hostVersion) noexcept {
  gState.hostVersion = hostVersion;
}
}  // namespace detail

}  // namespace zel

extern "C" ZEL_EXPORT void REALPluginMain(REALresolver resolver) {
  using namespace zel;
  gState.resolver = resolver;
  if (resolver != nullptr) {
    if (const auto version =
            reinterpret_cast<service::REALGetRBVersion>(resolver("REALGetRBVersion")))
      gState.hostVersion = version();
  }
  gState.sdkLevel = sdkLevelForHostVersion(gState.hostVersion);
  if (resolver == nullptr) return;
  // The host must offer this service; the call stays unguarded on purpose.
  reinterpret_cast<service::RegisterPluginVersion>(resolver("RegisterPluginVersion"))(
      gState.sdkLevel);
  initialise();
}
