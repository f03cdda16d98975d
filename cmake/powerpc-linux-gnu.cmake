# The device: 32-bit big-endian PowerPC under Linux, with Qt 4.8. See docs/device.md.
#
#   cmake -S . -B build-device -DCMAKE_TOOLCHAIN_FILE=cmake/powerpc-linux-gnu.cmake \
#       -DQT_QMAKE_EXECUTABLE=/path/to/the/device's/qmake -DTLVLIB_LIBLOG=/path/to/the/device's/liblog.so
#
# TLVLIB_CROSS names another compiler than Debian's by its prefix, such as /opt/device/bin/powerpc-linux-. A sysroot is
# given with CMAKE_SYSROOT.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TLVLIB_CROSS)
set(TLVLIB_CROSS "powerpc-linux-gnu-" CACHE STRING "What the names of the device's compilers begin with")
set(CMAKE_C_COMPILER "${TLVLIB_CROSS}gcc")
set(CMAKE_CXX_COMPILER "${TLVLIB_CROSS}g++")
# qmake and moc run here; what qmake tells stands for the device.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

set(TLVLIB_QT_VERSION 4 CACHE STRING "Major version of Qt to build with")
set(TLVLIB_TESTS OFF CACHE BOOL "Tests need the device's QtTest")
