// The end-to-end target of one function family: each input picks one registered function of the
// family (any overload), calls it with fuzzed arguments and checks the host afterwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "support/fuzz_host.h"

namespace zeltest {

struct Family {
  std::span<const std::string_view> functions;       // registered names
  std::span<const std::string_view> sizeParameters;  // lower-case names of allocation sizes
  std::span<const DocumentedException> exceptions;   // what the family may raise
};

// Allocation failure as the guard reports it, which any registered function may raise.
inline constexpr DocumentedException kAllocationFailure{"OutOfMemoryException",
                                                        "Failed to allocate memory", true};

int fuzzFamily(const Family& family, const std::uint8_t* data, std::size_t size);

}  // namespace zeltest

// The libFuzzer entry points of a family's target.
#define ZEL_FAMILY_FUZZER(family)                                                     \
  extern "C" int LLVMFuzzerInitialize(int*, char***) {                                \
    zeltest::loadPlugin();                                                            \
    return 0;                                                                         \
  }                                                                                   \
  extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) { \
    return zeltest::fuzzFamily(family, data, size);                                   \
  }
