// The typed call of the stand-in host: maps C++ argument types to the host's C types and lets the
// host check them against the registered declaration before calling through the pointer.
#pragma once

#include <initializer_list>
#include <string_view>
#include <type_traits>

#include "sdk/host_types.h"

namespace zelhost {

namespace detail {

enum class CType : char {
  Void = 'v',
  String = 's',
  Integer = 'i',
  Boolean = 'b',
  Double = 'd',
  Ptr = 'p',
  Color = 'c',
  Object = 'o',
  Array = 'a',
};

template <class T>
inline constexpr bool kUnsupportedType = false;

template <class T>
constexpr CType cTypeOf() {
  if constexpr (std::is_void_v<T>) {
    return CType::Void;
  } else if constexpr (std::is_same_v<T, REALstring>) {
    return CType::String;
  } else if constexpr (std::is_same_v<T, RBInteger>) {
    return CType::Integer;
  } else if constexpr (std::is_same_v<T, RBBoolean>) {
    return CType::Boolean;
  } else if constexpr (std::is_same_v<T, double>) {
    return CType::Double;
  } else if constexpr (std::is_same_v<T, void*>) {
    return CType::Ptr;
  } else if constexpr (std::is_same_v<T, RBColor>) {
    return CType::Color;
  } else if constexpr (std::is_same_v<T, REALobject>) {
    return CType::Object;
  } else if constexpr (std::is_same_v<T, REALarray>) {
    return CType::Array;
  } else {
    static_assert(kUnsupportedType<T>,
                  "host calls take REALstring, RBInteger, RBBoolean, double, void*, RBColor, "
                  "REALobject or REALarray");
  }
}

enum class Through { Function, Setter };

// The function (or setter) of the member that `declaration` names and whose C signature is
// `arguments` -> `result`; throws std::logic_error when there is none.
REALproc resolveCall(std::string_view declaration, std::initializer_list<CType> arguments,
                     CType result, Through through);

}  // namespace detail

template <class Result, class... Args>
Result (*bind(std::string_view declaration))(Args...) {
  const REALproc function =
      detail::resolveCall(declaration, {detail::cTypeOf<Args>()...}, detail::cTypeOf<Result>(),
                          detail::Through::Function);
  return reinterpret_cast<Result (*)(Args...)>(function);
}

template <class Result, class... Args>
Result call(std::string_view declaration, Args... args) {
  return bind<Result, Args...>(declaration)(args...);
}

template <class... Args>
void assign(std::string_view declaration, Args... args) {
  const REALproc setter = detail::resolveCall(declaration, {detail::cTypeOf<Args>()...},
                                              detail::CType::Void, detail::Through::Setter);
  reinterpret_cast<void (*)(Args...)>(setter)(args...);
}

}  // namespace zelhost
