// The controls that the test-only build of the plug-in exports beside REALPluginMain. A walk arms
// one allocation, makes its call, then asks whether that allocation was reached.
#pragma once

#define ZEL_FAILPOINT_EXPORT __attribute__((visibility("default")))

namespace zeltest::failpoints {

// Arms the failpoint: the nth allocation from now fails (0 disarms) and the count restarts.
using FailAllocation = void (*)(long nth);
inline constexpr const char* kFailAllocation = "zelFailAllocation";
// Whether the armed allocation was reached; disarms.
using AllocationFailed = bool (*)();
inline constexpr const char* kAllocationFailed = "zelAllocationFailed";
// Allocations counted since the failpoint was last armed.
using AllocationCount = long (*)();
inline constexpr const char* kAllocationCount = "zelAllocationCount";

}  // namespace zeltest::failpoints
