/* Zig's C++ runtime is compiled for macOS 11 and allocates over-aligned memory with aligned_alloc,
   which macOS gained only in 10.15. Linked into the plug-in ahead of that runtime, this keeps the
   library loadable on older systems through posix_memalign, which every supported macOS has. */
typedef __SIZE_TYPE__ size_t;
int posix_memalign(void** block, size_t alignment, size_t size);

__attribute__((visibility("hidden"))) void* aligned_alloc(size_t alignment, size_t size) {
  void* block = 0;
  if (alignment < sizeof(void*)) alignment = sizeof(void*);
  return posix_memalign(&block, alignment, size) == 0 ? block : 0;
}
