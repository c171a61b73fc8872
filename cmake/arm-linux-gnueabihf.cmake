# The 32-bit ARM phone, built with Debian's cross compiler (g++-arm-linux-gnueabihf) against the libraries that
# scripts/arm-sysroot.sh unpacks. -DWIDESEEK_ARM_SYSROOT names another folder with an armhf system's usr/include and
# usr/lib. Where qemu-user is installed, what was built runs in it.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(triplet arm-linux-gnueabihf)

set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

set(WIDESEEK_ARM_SYSROOT
    "${CMAKE_CURRENT_LIST_DIR}/../build/arm-sysroot"
    CACHE PATH "Libraries and headers of an armhf system")
# CMake's trial projects read this file again.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES WIDESEEK_ARM_SYSROOT)
cmake_path(ABSOLUTE_PATH WIDESEEK_ARM_SYSROOT NORMALIZE OUTPUT_VARIABLE sysroot)
if(NOT EXISTS "${sysroot}/usr/include")
  message(FATAL_ERROR "${sysroot} has no usr/include: scripts/arm-sysroot.sh fetches the libraries of an armhf system")
endif()

set(CMAKE_FIND_ROOT_PATH "${sysroot}" /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} "${sysroot}")
set(ENV{PKG_CONFIG_LIBDIR} "${sysroot}/usr/lib/${triplet}/pkgconfig:${sysroot}/usr/share/pkgconfig")

# GCC notes wherever the calling convention differs from that of GCC before 7.1, which no part of the phone is built with.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

# Where the linker finds the libraries that the libraries need.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${sysroot}/usr/lib/${triplet}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")

find_program(WIDESEEK_QEMU_ARM qemu-arm)
mark_as_advanced(WIDESEEK_QEMU_ARM)
if(WIDESEEK_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR
      "${WIDESEEK_QEMU_ARM};-L;/usr/${triplet};-E;LD_LIBRARY_PATH=${sysroot}/usr/lib/${triplet};-E;GCONV_PATH=${sysroot}/usr/lib/${triplet}/gconv")
endif()
