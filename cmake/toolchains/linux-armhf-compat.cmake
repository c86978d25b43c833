# Linux through Zig, against its oldest glibc so that the library loads on older distributions.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7)
# The distributions' armhf baseline: ARMv7-A, Thumb-2, VFPv3 with 16 double registers.
set(ZEL_ZIG_TARGET "arm-linux-gnueabihf.2.17 -mcpu=generic+v7a+vfp3d16+thumb2")
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_CURRENT_LIST_DIR}/zig-relink elf)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
