// Allocation failpoints for the test-only build of the plug-in. The link redirects every call of
// the C allocation functions and of every operator new inside the library (its own code and the
// statically linked C++ runtime) to the wrappers below, which count allocations and can make one
// chosen allocation fail the way the system would: null from the C functions, std::bad_alloc from
// operator new, null from its nothrow forms.
#include <cerrno>
#include <cstddef>
#include <new>

#include "failpoint_control.h"

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void* __real_aligned_alloc(std::size_t alignment, std::size_t bytes);
int __real_posix_memalign(void** block, std::size_t alignment, std::size_t bytes);
}

namespace {

// A walk makes one call at a time, so plain counters do.
long countdown = 0;  // allocations until the armed one; 0 when disarmed
bool fired = false;
long allocations = 0;
// operator new of the static runtime calls malloc: one allocation, counted once.
thread_local int insideOperatorNew = 0;

bool failThisAllocation() {
  if (insideOperatorNew > 0) return false;
  ++allocations;
  if (countdown == 0 || --countdown != 0) return false;
  fired = true;
  return true;
}

void* failedBlock() {
  errno = ENOMEM;
  return nullptr;
}

class OperatorNewScope {
 public:
  OperatorNewScope() { ++insideOperatorNew; }
  ~OperatorNewScope() { --insideOperatorNew; }
  OperatorNewScope(const OperatorNewScope&) = delete;
  OperatorNewScope& operator=(const OperatorNewScope&) = delete;
};

template <class Allocate>
void* throwingNew(Allocate&& allocate) {
  if (failThisAllocation()) throw std::bad_alloc();
  const OperatorNewScope scope;
  return allocate();
}

template <class Allocate>
void* nothrowNew(Allocate&& allocate) noexcept {
  if (failThisAllocation()) return nullptr;
  const OperatorNewScope scope;
  return allocate();
}

}  // namespace

extern "C" {

ZEL_FAILPOINT_EXPORT void zelFailAllocation(long nth) {
  countdown = nth;
  fired = false;
  allocations = 0;
}

ZEL_FAILPOINT_EXPORT bool zelAllocationFailed() {
  const bool result = fired;
  countdown = 0;
  fired = false;
  return result;
}

ZEL_FAILPOINT_EXPORT long zelAllocationCount() {
  return allocations;
}

void* __wrap_malloc(std::size_t bytes) {
  return failThisAllocation() ? failedBlock() : __real_malloc(bytes);
}

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
  return failThisAllocation() ? failedBlock() : __real_calloc(count, bytes);
}

void* __wrap_realloc(void* block, std::size_t bytes) {
  return failThisAllocation() ? failedBlock() : __real_realloc(block, bytes);
}

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t bytes) {
  return failThisAllocation() ? failedBlock() : __real_aligned_alloc(alignment, bytes);
}

int __wrap_posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
  return failThisAllocation() ? ENOMEM : __real_posix_memalign(block, alignment, bytes);
}

}  // extern "C"

// Every operator new, bound by its mangled name; std::size_t mangles as "m" (unsigned long) on
// 64-bit Linux and "j" (unsigned int) on 32-bit.
#if __SIZEOF_SIZE_T__ == __SIZEOF_LONG__ && __SIZEOF_LONG__ == 8
#define ZEL_SIZE "m"
#else
#define ZEL_SIZE "j"
#endif
#define ZEL_NEW(kind, rest) "_Zn" kind ZEL_SIZE rest
#define ZEL_ALIGNED "St11align_val_t"
#define ZEL_NOTHROW "RKSt9nothrow_t"

namespace {
using std::align_val_t;
using std::nothrow_t;
using std::size_t;
}  // namespace

void* realNew(size_t) __asm__("__real_" ZEL_NEW("w", ""));
void* realNewArray(size_t) __asm__("__real_" ZEL_NEW("a", ""));
void* realNewAligned(size_t, align_val_t) __asm__("__real_" ZEL_NEW("w", ZEL_ALIGNED));
void* realNewArrayAligned(size_t, align_val_t) __asm__("__real_" ZEL_NEW("a", ZEL_ALIGNED));
void* realNewNothrow(size_t, const nothrow_t&) noexcept
    __asm__("__real_" ZEL_NEW("w", ZEL_NOTHROW));
void* realNewArrayNothrow(size_t, const nothrow_t&) noexcept
    __asm__("__real_" ZEL_NEW("a", ZEL_NOTHROW));
void* realNewAlignedNothrow(size_t, align_val_t, const nothrow_t&) noexcept
    __asm__("__real_" ZEL_NEW("w", ZEL_ALIGNED ZEL_NOTHROW));
void* realNewArrayAlignedNothrow(size_t, align_val_t, const nothrow_t&) noexcept
    __asm__("__real_" ZEL_NEW("a", ZEL_ALIGNED ZEL_NOTHROW));

void* wrapNew(size_t bytes) __asm__("__wrap_" ZEL_NEW("w", ""));
void* wrapNewArray(size_t bytes) __asm__("__wrap_" ZEL_NEW("a", ""));
void* wrapNewAligned(size_t, align_val_t) __asm__("__wrap_" ZEL_NEW("w", ZEL_ALIGNED));
void* wrapNewArrayAligned(size_t, align_val_t) __asm__("__wrap_" ZEL_NEW("a", ZEL_ALIGNED));
void* wrapNewNothrow(size_t, const nothrow_t&) noexcept
    __asm__("__wrap_" ZEL_NEW("w", ZEL_NOTHROW));
void* wrapNewArrayNothrow(size_t, const nothrow_t&) noexcept
    __asm__("__wrap_" ZEL_NEW("a", ZEL_NOTHROW));
void* wrapNewAlignedNothrow(size_t, align_val_t, const nothrow_t&) noexcept
    __asm__("__wrap_" ZEL_NEW("w", ZEL_ALIGNED ZEL_NOTHROW));
void* wrapNewArrayAlignedNothrow(size_t, align_val_t, const nothrow_t&) noexcept
    __asm__("__wrap_" ZEL_NEW("a", ZEL_ALIGNED ZEL_NOTHROW));

void* wrapNew(size_t bytes) {
  return throwingNew([&] { return realNew(bytes); });
}
void* wrapNewArray(size_t bytes) {
  return throwingNew([&] { return realNewArray(bytes); });
}
void* wrapNewAligned(size_t bytes, align_val_t alignment) {
  return throwingNew([&] { return realNewAligned(bytes, alignment); });
}
void* wrapNewArrayAligned(size_t bytes, align_val_t alignment) {
  return throwingNew([&] { return realNewArrayAligned(bytes, alignment); });
}
void* wrapNewNothrow(size_t bytes, const nothrow_t& tag) noexcept {
  return nothrowNew([&] { return realNewNothrow(bytes, tag); });
}
void* wrapNewArrayNothrow(size_t bytes, const nothrow_t& tag) noexcept {
  return nothrowNew([&] { return realNewArrayNothrow(bytes, tag); });
}
void* wrapNewAlignedNothrow(size_t bytes, align_val_t alignment, const nothrow_t& tag) noexcept {
  return nothrowNew([&] { return realNewAlignedNothrow(bytes, alignment, tag); });
}
void* wrapNewArrayAlignedNothrow(size_t bytes, align_val_t alignment,
                                 const nothrow_t& tag) noexcept {
  return nothrowNew([&] { return realNewArrayAlignedNothrow(bytes, alignment, tag); });
}
