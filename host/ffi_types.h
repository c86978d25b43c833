// The libffi types of the C parameters and results that the host's calling convention uses.
#pragma once

#include <ffi.h>

#include "stand_in_host_call.h"

namespace zelhost::detail {

ffi_type* ffiType(CType type);

}  // namespace zelhost::detail
