#include "service_table.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "stand_in_host.h"

namespace zelhost {
namespace detail {
namespace {

struct ServiceState {
  std::atomic<int> lookups{0};
  std::atomic<int> calls{0};
  std::atomic<bool> missing{false};
  std::atomic<bool> failing{false};
};

std::array<ServiceState, kServiceCount>& services() {
  static std::array<ServiceState, kServiceCount> table;
  return table;
}

ServiceState& state(Service service) {
  return services()[static_cast<std::size_t>(service)];
}

std::atomic<int> allocationFailuresPending{0};
std::atomic<bool> constructorFailing{false};
std::atomic<bool> terminatedStringData{true};

std::mutex bookkeepingMutex;
std::map<std::string, int, std::less<>> unknownLookups;
std::vector<std::string> errors;

Service requireService(std::string_view name) {
  const auto service = serviceNamed(name);
  if (!service)
    throw std::invalid_argument("not a service of the stand-in host: " + std::string(name));
  return *service;
}

}  // namespace

std::optional<Service> serviceNamed(std::string_view name) {
  const auto found = std::find(kServiceNames.begin(), kServiceNames.end(), name);
  if (found == kServiceNames.end()) return std::nullopt;
  return static_cast<Service>(found - kServiceNames.begin());
}

bool lookUp(Service service) {
  ServiceState& entry = state(service);
  entry.lookups.fetch_add(1, std::memory_order_relaxed);
  return !entry.missing.load(std::memory_order_relaxed);
}

bool enterFailing(Service service) {
  ServiceState& entry = state(service);
  entry.calls.fetch_add(1, std::memory_order_relaxed);
  return entry.failing.load(std::memory_order_relaxed);
}

void countUnknownLookup(std::string_view name) {
  const std::lock_guard lock(bookkeepingMutex);
  ++unknownLookups[std::string(name)];
}

bool allocationAllowed() {
  int pending = allocationFailuresPending.load();
  while (pending > 0) {
    if (allocationFailuresPending.compare_exchange_weak(pending, pending - 1)) return false;
  }
  return true;
}

bool memoryBlockConstructorFails() {
  return constructorFailing.load();
}
bool stringDataTerminated() {
  return terminatedStringData.load();
}

void reportProtocolError(std::string message) {
  const std::lock_guard lock(bookkeepingMutex);
  errors.push_back(std::move(message));
}

void resetServiceTable() {
  for (ServiceState& entry : services()) {
    entry.lookups = 0;
    entry.calls = 0;
    entry.missing = false;
    entry.failing = false;
  }
  allocationFailuresPending = 0;
  constructorFailing = false;
  terminatedStringData = true;
  const std::lock_guard lock(bookkeepingMutex);
  unknownLookups.clear();
  errors.clear();
}

}  // namespace detail

void setServiceMissing(std::string_view service, bool missing) {
  detail::state(detail::requireService(service)).missing = missing;
}

void setServiceFailing(std::string_view service, bool failing) {
  detail::state(detail::requireService(service)).failing = failing;
}

void failNextAllocations(int count) {
  detail::allocationFailuresPending = std::max(count, 0);
}

void setMemoryBlockConstructorFailing(bool failing) {
  detail::constructorFailing = failing;
}

void setStringDataTerminated(bool terminated) {
  detail::terminatedStringData = terminated;
}

int resolverLookups(std::string_view service) {
  if (const auto known = detail::serviceNamed(service)) return detail::state(*known).lookups;
  const std::lock_guard lock(detail::bookkeepingMutex);
  const auto found = detail::unknownLookups.find(service);
  return found == detail::unknownLookups.end() ? 0 : found->second;
}

int serviceCalls(std::string_view service) {
  return detail::state(detail::requireService(service)).calls;
}

std::vector<std::string> protocolErrors() {
  const std::lock_guard lock(detail::bookkeepingMutex);
  return detail::errors;
}

}  // namespace zelhost
