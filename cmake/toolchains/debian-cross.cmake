# Shared part of the Debian cross toolchains: ZEL_CROSS_TRIPLET and ZEL_CROSS_EMULATOR are set by
# the including file. The compiler finds headers and libraries in the multiarch directories under
# /usr, so no separate sysroot is needed.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${ZEL_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${ZEL_CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${ZEL_CROSS_TRIPLET})

# qemu takes the loader from the cross prefix, but the loader searches /lib/<triplet> first, where
# the multiarch C library of another Debian revision lives; a loader and libc of different builds
# hang or crash in pthread_create. Searching the prefix first keeps the pair from one build;
# libraries the prefix lacks (libffi) still come from the multiarch directories.
find_program(ZEL_CROSS_EMULATOR_PATH ${ZEL_CROSS_EMULATOR} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ZEL_CROSS_EMULATOR_PATH} -L /usr/${ZEL_CROSS_TRIPLET} -E
    LD_LIBRARY_PATH=/usr/${ZEL_CROSS_TRIPLET}/lib)

# pkg-config must see only the target's .pc files, never the build machine's.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${ZEL_CROSS_TRIPLET}/pkgconfig:/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
