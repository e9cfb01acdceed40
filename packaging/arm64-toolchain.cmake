# Builds for arm64 on another machine: Debian's cross compiler, and a sysroot that arm64.sh unpacks
# from Debian's arm64 packages. What the build runs for itself (the generators of the resources, the
# tests) runs under qemu; the tools of the toolkit are this machine's.
#
# ENDPIN_SYSROOT: the sysroot. From the environment, because every compiler check of CMake reads
# this file anew, without the variables of the cache.
set(sysroot $ENV{ENDPIN_SYSROOT})
if(NOT IS_DIRECTORY "${sysroot}/usr/lib/aarch64-linux-gnu")
  message(FATAL_ERROR "ENDPIN_SYSROOT names no arm64 sysroot; packaging/arm64.sh makes one")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_SYSROOT ${sysroot})

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
set(ENV{PKG_CONFIG_LIBDIR}
  ${sysroot}/usr/lib/aarch64-linux-gnu/pkgconfig:${sysroot}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L ${sysroot})

# The toolkit's compilers of resources and signals, from this machine's packages of the same version.
cmake_host_system_information(RESULT machine QUERY OS_PLATFORM)
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/${machine}-linux-gnu/cmake)
