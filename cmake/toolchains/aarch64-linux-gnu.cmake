# Cross build for 64-bit ARM Linux on a Debian x86-64 host with multi-arch packages:
#
#   dpkg --add-architecture arm64
#   apt-get install crossbuild-essential-arm64 qemu-user qtbase5-dev:arm64 ...
#   cmake -S . -B build/arm64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/aarch64-linux-gnu.cmake
#
# tools/build-arm64.sh does all of this. Libraries and their CMake/pkg-config files come from
# /usr/lib/aarch64-linux-gnu (picked because the compiler reports that library architecture);
# moc, uic and rcc stay the host's, as Debian's Qt 5 CMake files point to /usr/lib/qt5/bin.
#
# Optional:
#   ORYX_CROSS_PKG_CONFIG_DIRS  extra pkg-config folders searched before the system's arm64
#                               ones, for libraries unpacked outside dpkg (environment or -D)
#   CMAKE_CROSSCOMPILING_EMULATOR defaults to qemu-aarch64 when it is installed, so that ctest
#                               runs the test executables under user-mode emulation.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(ORYX_CROSS_TRIPLET aarch64-linux-gnu)
set(CMAKE_C_COMPILER ${ORYX_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${ORYX_CROSS_TRIPLET}-g++)

# Only the target's pkg-config files: the host's x86-64 ones must never be picked up.
if(NOT DEFINED ORYX_CROSS_PKG_CONFIG_DIRS AND DEFINED ENV{ORYX_CROSS_PKG_CONFIG_DIRS})
    set(ORYX_CROSS_PKG_CONFIG_DIRS "$ENV{ORYX_CROSS_PKG_CONFIG_DIRS}")
endif()
set(_oryx_pc_dirs ${ORYX_CROSS_PKG_CONFIG_DIRS}
    /usr/lib/${ORYX_CROSS_TRIPLET}/pkgconfig /usr/share/pkgconfig)
string(REPLACE ";" ":" _oryx_pc_dirs "${_oryx_pc_dirs}")
set(ENV{PKG_CONFIG_LIBDIR} "${_oryx_pc_dirs}")
unset(ENV{PKG_CONFIG_PATH})
unset(_oryx_pc_dirs)
# Keep the value for try_compile projects, which read this file again.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORYX_CROSS_PKG_CONFIG_DIRS)

if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    find_program(ORYX_QEMU_AARCH64 qemu-aarch64)
    if(ORYX_QEMU_AARCH64)
        set(CMAKE_CROSSCOMPILING_EMULATOR ${ORYX_QEMU_AARCH64})
    endif()
endif()

# Programs (moc, pkg-config, ...) are the host's; libraries, headers and packages are searched
# in the usual prefixes, where multi-arch keeps each architecture's files apart.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
