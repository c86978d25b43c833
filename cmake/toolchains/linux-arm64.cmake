# Linux arm64 with Debian's cross g++ and the multiarch (arm64) dev packages; runs under qemu-user.
set(ZEL_CROSS_TRIPLET aarch64-linux-gnu)
set(ZEL_CROSS_EMULATOR qemu-aarch64)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
