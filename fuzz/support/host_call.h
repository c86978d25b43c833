// A call of one registered function the way compiled host code makes it, with every argument
// drawn from the fuzz input: text in every host encoding or raw bytes with no encoding, nil,
// MemoryBlocks, Ptr buffers, integers and doubles including their extremes.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <optional>
#include <span>
#include <string_view>

#include "stand_in_host.h"

namespace zeltest {

// Calls `member` through its C function, then releases the result and every argument as the
// host does. `sizeParameters` names (lower case) the integer parameters that size an allocation:
// they get small values or values that fail at once, never ones that make the call build
// gigabytes. Returns the exception the call raised, if any.
std::optional<zelhost::RaisedException> callWithFuzzedArguments(
    const zelhost::RegisteredMember& member, FuzzedDataProvider& input,
    std::span<const std::string_view> sizeParameters);

}  // namespace zeltest
