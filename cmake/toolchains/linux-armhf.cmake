# Linux ARM (32-bit, hard float) with Debian's cross g++ and the multiarch (armhf) dev packages;
# runs under qemu-user.
set(ZEL_CROSS_TRIPLET arm-linux-gnueabihf)
set(ZEL_CROSS_EMULATOR qemu-arm)
set(CMAKE_SYSTEM_PROCESSOR arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)

# GCC notes that span passing changed in GCC 7.1 on this ABI; everything is built by one compiler.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
