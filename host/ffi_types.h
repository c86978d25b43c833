// Calls through libffi with the C parameter and result types of the host's calling convention.
#pragma once

#include <ffi.h>

#include <span>

#include "stand_in_host_call.h"

namespace zelhost::detail {

ffi_type* ffiType(CType type);

// One C argument's value, in the member of its type.
union ArgumentValue {
  void* pointer;
  RBInteger integer;
  RBBoolean boolean;
  double real;
  RBColor color;
};

// Calls `function` with `values[i]` as an argument of type `parameters[i]` and gives the result in
// the member of its type. Throws std::invalid_argument when libffi cannot describe the call.
ArgumentValue callThroughFfi(void (*function)(), CType result, std::span<const CType> parameters,
                             std::span<ArgumentValue> values);

}  // namespace zelhost::detail
