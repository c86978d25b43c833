// Heap use of the code under measurement: the benchmark binary replaces the global allocation
// functions and keeps the high-water mark of bytes in use.
#pragma once

#include <cstddef>

namespace zeltest {

// Starts a new high-water mark from the bytes in use now.
void resetPeakHeap() noexcept;
// The most bytes in use since the last reset, beyond those in use at the reset.
std::size_t peakHeapGrowth() noexcept;

}  // namespace zeltest
