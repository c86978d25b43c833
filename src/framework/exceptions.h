// Native failures never reach the host: every registered function runs its body in `guarded`,
// which raises the host exception its policy names and returns the empty result.
#pragma once

#include <exception>
#include <new>
#include <type_traits>

namespace zel {

void RaiseHostException(const char* className, const char* message) noexcept;
void RaiseOutOfBounds(const char* message) noexcept;
void TranslateException(const std::exception& failure) noexcept;
// For anything thrown that is not a standard exception.
void RaiseUnnamedException() noexcept;

// What a registered function does when its body fails, named at each guard.
enum class OnFailure {
  // The matching host exception, with the translated message; a failed allocation raises
  // OutOfMemoryException.
  raise,
  // A failed allocation ends the call with the empty result (nil, 0, false) and no host
  // exception; every other failure is raised as with `raise`.
  emptyIfOutOfMemory,
  // The failure's own what() as the message: OutOfMemoryException for a failed allocation,
  // RuntimeException for any other standard exception.
  raiseOwnMessage,
};

// Runs the body; a failure raises the host exception the policy names and gives the empty result.
template <class Body>
auto guarded(OnFailure policy, Body&& body) noexcept -> decltype(body()) {
  using Result = decltype(body());
  try {
    return body();
  } catch (const std::bad_alloc& failure) {
    if (policy == OnFailure::raiseOwnMessage) {
      RaiseHostException("OutOfMemoryException", failure.what());
    } else if (policy == OnFailure::raise) {
      TranslateException(failure);
    }
  } catch (const std::exception& failure) {
    if (policy == OnFailure::raiseOwnMessage) {
      RaiseHostException("RuntimeException", failure.what());
    } else {
      TranslateException(failure);
    }
  } catch (...) {
    RaiseUnnamedException();
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

}  // namespace zel
