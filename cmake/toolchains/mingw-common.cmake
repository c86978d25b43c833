# Shared by the mingw-w64 toolchain files, which set ZEL_MINGW_TRIPLE first.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${ZEL_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZEL_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${ZEL_MINGW_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${ZEL_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Every executable and library carries its own C++ runtime: nothing to copy beside them, and the
# plug-in imports only system DLLs and msvcrt.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libstdc++ -static-libgcc")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libstdc++ -static-libgcc")

# Test executables run under Wine, in a prefix inside the build tree.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../wine-run)

# pkg-config must not find the build machine's own libraries.
set(ENV{PKG_CONFIG_LIBDIR} /usr/${ZEL_MINGW_TRIPLE}/lib/pkgconfig)
