// A process-wide code address resolved on first use. Host threads may race to fill it: every filler
// stores the same address, and a failed lookup leaves it empty, so the next call asks again.
#pragma once

#include <atomic>

namespace zel {

template <class Address>
class LazyAddress {
 public:
  template <class Resolve>
  Address get(Resolve&& resolve) noexcept {
    Address address = cached_.load(std::memory_order_acquire);
    if (address != nullptr) return address;
    address = resolve();
    if (address != nullptr) cached_.store(address, std::memory_order_release);
    return address;
  }

 private:
  std::atomic<Address> cached_{nullptr};
};

}  // namespace zel
