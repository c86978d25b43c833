// Native failures never reach the host: every registered function runs its body in `guarded`,
// which raises the matching host exception and returns the empty result.
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

template <class Body>
auto guarded(Body&& body) noexcept -> decltype(body()) {
  using Result = decltype(body());
  try {
    return body();
  } catch (const std::exception& failure) {
    TranslateException(failure);
  } catch (...) {
    RaiseUnnamedException();
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

// For functions whose failed allocations end the call with the empty result (nil, 0, false) and
// no host exception; every other failure is translated as usual.
template <class Body>
auto quietOnOutOfMemory(Body&& body) noexcept -> decltype(body()) {
  return guarded([&]() -> decltype(body()) {
    try {
      return body();
    } catch (const std::bad_alloc&) {
      return {};
    }
  });
}

}  // namespace zel
