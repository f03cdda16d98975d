# Finds the Qt that TLVLIB_QT_VERSION names, so that no other file has to know the version. Sets
#   TLVLIB_QT_CORE, TLVLIB_QT_GUI, TLVLIB_QT_TEST   the targets to link; the last two where they are needed
#   TLVLIB_PKGCONFIG_QT                             the pkg-config module of the first
# Qt 4 comes through CMake's own FindQt4: name its qmake with QT_QMAKE_EXECUTABLE and, for a cross build, the
# host's moc with QT_MOC_EXECUTABLE.

set(tlvlib_qt_test)
if(TLVLIB_QT_VERSION EQUAL 4)
    if(BUILD_TESTING)
        set(tlvlib_qt_test QtTest)
        set(TLVLIB_QT_TEST Qt4::QtTest)
    endif()
    find_package(Qt4 4.8 REQUIRED COMPONENTS QtCore ${tlvlib_qt_test})
    set(TLVLIB_QT_CORE Qt4::QtCore)
    set(TLVLIB_PKGCONFIG_QT QtCore)
elseif(TLVLIB_QT_VERSION EQUAL 5)
    if(BUILD_TESTING)
        set(tlvlib_qt_test Test)
        set(TLVLIB_QT_TEST Qt5::Test)
    endif()
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui ${tlvlib_qt_test})
    set(TLVLIB_QT_CORE Qt5::Core)
    set(TLVLIB_QT_GUI Qt5::Gui)
    set(TLVLIB_PKGCONFIG_QT Qt5Core)
else()
    message(FATAL_ERROR "TLVLIB_QT_VERSION is ${TLVLIB_QT_VERSION}; it can be 5 or 4")
endif()
