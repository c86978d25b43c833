#include "ffi_types.h"

#include <cstdint>

namespace zelhost::detail {

ffi_type* ffiType(CType type) {
  switch (type) {
    case CType::Void:
      return &ffi_type_void;
    case CType::Integer:
      // RBInteger is as wide as a pointer: 64-bit on 64-bit targets, 32-bit on 32-bit ones.
      return sizeof(RBInteger) == sizeof(std::int64_t) ? &ffi_type_sint64 : &ffi_type_sint32;
    case CType::Boolean:
      return &ffi_type_sint8;
    case CType::Double:
      return &ffi_type_double;
    case CType::Color:
      return &ffi_type_uint32;
    case CType::String:
    case CType::Ptr:
    case CType::Object:
    case CType::Array:
      return &ffi_type_pointer;
  }
  return &ffi_type_void;
}

}  // namespace zelhost::detail
