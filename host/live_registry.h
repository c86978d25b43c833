// The records behind reference-counted handles (strings, objects). A handle is followed only while
// its record is live, so that the plug-in's misuse of one is reported instead of undefined.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_set>

#include "service_table.h"

namespace zelhost::detail {

// `Record` has an `references` count, which the registry guards.
template <class Record, class Handle>
class LiveRegistry {
 public:
  explicit LiveRegistry(const char* kind) : kind_(kind) {}

  void add(Record* record) {
    const std::lock_guard lock(mutex_);
    live_.insert(record);
  }

  // The live record behind `handle`; null (and a protocol error naming `context`) otherwise.
  Record* find(Handle handle, const char* context) const {
    {
      const std::lock_guard lock(mutex_);
      if (live_.contains(recordOf(handle))) return recordOf(handle);
    }
    report(handle, context);
    return nullptr;
  }

  void retain(Handle handle, const char* context) {
    const std::lock_guard lock(mutex_);
    if (live_.contains(recordOf(handle))) {
      ++recordOf(handle)->references;
      return;
    }
    report(handle, context);
  }

  // True when this took the last reference: the record has left the registry for the caller to
  // destroy.
  bool release(Handle handle, const char* context) {
    Record* record = recordOf(handle);
    const std::lock_guard lock(mutex_);
    if (!live_.contains(record)) {
      report(handle, context);
      return false;
    }
    if (--record->references > 0) return false;
    live_.erase(record);
    return true;
  }

  // 0 for a handle that is not live.
  int references(Handle handle) const {
    const std::lock_guard lock(mutex_);
    return live_.contains(recordOf(handle)) ? recordOf(handle)->references : 0;
  }

  int size() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(live_.size());
  }

 private:
  static Record* recordOf(Handle handle) { return reinterpret_cast<Record*>(handle); }

  void report(Handle handle, const char* context) const {
    reportProtocolError(std::string(context) + ": not a live " + kind_ + " " +
                        std::to_string(reinterpret_cast<std::uintptr_t>(handle)));
  }

  mutable std::mutex mutex_;
  std::unordered_set<const Record*> live_;
  const char* kind_;
};

}  // namespace zelhost::detail
