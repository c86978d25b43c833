#include "ffi_types.h"

#include <cstdint>
#include <stdexcept>
#include <vector>

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

ArgumentValue callThroughFfi(void (*function)(), CType result, std::span<const CType> parameters,
                             std::span<ArgumentValue> values) {
  std::vector<ffi_type*> types;
  std::vector<void*> addresses;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    types.push_back(ffiType(parameters[i]));
    addresses.push_back(&values[i]);
  }
  ffi_cif cif{};
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()), ffiType(result),
                   types.data()) != FFI_OK) {
    throw std::invalid_argument("libffi cannot describe the call");
  }
  // libffi widens a result narrower than a register to a whole ffi_arg.
  union {
    ffi_arg integer;
    double real;
  } raw{};
  ffi_call(&cif, function, &raw, addresses.data());
  ArgumentValue value{};
  switch (result) {
    case CType::Void:
      break;
    case CType::Integer:
      value.integer = static_cast<RBInteger>(raw.integer);
      break;
    case CType::Boolean:
      value.boolean = static_cast<RBBoolean>(raw.integer);
      break;
    case CType::Double:
      value.real = raw.real;
      break;
    case CType::Color:
      value.color = static_cast<RBColor>(raw.integer);
      break;
    case CType::String:
    case CType::Ptr:
    case CType::Object:
    case CType::Array:
      value.pointer = reinterpret_cast<void*>(static_cast<std::uintptr_t>(raw.integer));
      break;
  }
  return value;
}

}  // namespace zelhost::detail
