// The host's services by name, with what the tests configure about each (missing, failing) and
// what they observe (lookups, calls). Shared by the resolver and the service implementations.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/host_services.h"

namespace zelhost::detail {

#define ZEL_SERVICE_ENUMERATOR(Shape, Name, Result, Parameters, Arguments) Name,
enum class Service : std::size_t { ZEL_HOST_SERVICES(ZEL_SERVICE_ENUMERATOR) Count };
#undef ZEL_SERVICE_ENUMERATOR

inline constexpr std::size_t kServiceCount = static_cast<std::size_t>(Service::Count);

#define ZEL_SERVICE_NAME(Shape, Name, Result, Parameters, Arguments) #Name,
inline constexpr std::array<std::string_view, kServiceCount> kServiceNames = {
    ZEL_HOST_SERVICES(ZEL_SERVICE_NAME)};
#undef ZEL_SERVICE_NAME

std::optional<Service> serviceNamed(std::string_view name);

// Counts a resolver lookup; false when the service is configured missing.
bool lookUp(Service service);
// Counts a call; true when the service is configured to fail.
bool enterFailing(Service service);
void countUnknownLookup(std::string_view name);

// False when an injected allocation failure takes this creation.
bool allocationAllowed();
bool memoryBlockConstructorFails();
bool stringDataTerminated();

void reportProtocolError(std::string message);

// Back to no faults and zero counters.
void resetServiceTable();

}  // namespace zelhost::detail
