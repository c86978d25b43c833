#include "framework/tagged_string.h"

#include "framework/host_api.h"
#include "framework/plugin_state.h"

namespace zel {

REALstring buildTaggedString(const char* bytes, int count, std::uint32_t encoding) noexcept {
  if (pluginState().hostVersion >= kVersionWithEncodedBuild) {
    return host::REALBuildStringWithEncoding(bytes, count, encoding);
  }
  REALstring built = host::REALBuildString(bytes, count);
  if (built != nullptr) host::REALSetStringEncoding(built, encoding);
  return built;
}

}  // namespace zel
