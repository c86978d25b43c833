// The libffi types of the C parameters and results that the host's calling convention uses.
#pragma once

#include <ffi.h>

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

}  // namespace zelhost::detail
