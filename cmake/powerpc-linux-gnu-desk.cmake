# The device's processor with the headers of the desk's Qt 5: for scripts/check-device, which does not link.
include("${CMAKE_CURRENT_LIST_DIR}/powerpc-linux-gnu.cmake")
set(TLVLIB_QT_VERSION 5 CACHE STRING "Major version of Qt to build with" FORCE)
# CMake would look for it where the libraries of the device's processor are.
execute_process(COMMAND pkg-config --variable=libdir Qt5Core
    OUTPUT_VARIABLE tlvlib_desk_libraries
    OUTPUT_STRIP_TRAILING_WHITESPACE)
set(Qt5_DIR "${tlvlib_desk_libraries}/cmake/Qt5" CACHE PATH "The desk's Qt 5")
