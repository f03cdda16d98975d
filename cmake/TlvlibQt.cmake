# Finds the Qt that TLVLIB_QT_VERSION names, so that no other file has to know the version. Sets
#   TLVLIB_QT             the targets that the library links: core, GUI for pictures, network for cookies
#   TLVLIB_QT_TEST        the target that tests link besides, where they are built
#   TLVLIB_QT_COMPONENTS  the names of the library's targets for find_package()
#   TLVLIB_PKGCONFIG_QT   the names of their pkg-config modules
#   TLVLIB_CXX_STANDARD   what library and tests are compiled as: C++11, unless Qt's headers need more
# Qt 4 comes through CMake's own FindQt4: name its qmake with QT_QMAKE_EXECUTABLE and, for a cross build, the
# host's moc with QT_MOC_EXECUTABLE.

set(tlvlib_qt_test)
set(TLVLIB_CXX_STANDARD 11)
if(TLVLIB_QT_VERSION EQUAL 4)
    if(TLVLIB_TESTS)
        set(tlvlib_qt_test QtTest)
        set(TLVLIB_QT_TEST Qt4::QtTest)
    endif()
    set(TLVLIB_QT_COMPONENTS QtCore QtGui QtNetwork)
    find_package(Qt4 4.8 REQUIRED COMPONENTS ${TLVLIB_QT_COMPONENTS} ${tlvlib_qt_test})
    set(TLVLIB_QT Qt4::QtCore Qt4::QtGui Qt4::QtNetwork)
    set(TLVLIB_PKGCONFIG_QT "QtCore QtGui QtNetwork")
elseif(TLVLIB_QT_VERSION MATCHES "^[56]$")
    set(tlvlib_qt "Qt${TLVLIB_QT_VERSION}")
    set(tlvlib_qt_minimum 5.15)
    set(TLVLIB_QT_COMPONENTS Core Gui Network)
    if(TLVLIB_QT_VERSION EQUAL 6)
        set(tlvlib_qt_minimum 6.4)
        set(TLVLIB_CXX_STANDARD 17)
        list(APPEND TLVLIB_QT_COMPONENTS Core5Compat) # the codecs
    endif()
    if(TLVLIB_TESTS)
        set(tlvlib_qt_test Test)
        set(TLVLIB_QT_TEST ${tlvlib_qt}::Test)
    endif()
    find_package(${tlvlib_qt} ${tlvlib_qt_minimum} REQUIRED COMPONENTS ${TLVLIB_QT_COMPONENTS} ${tlvlib_qt_test})
    list(TRANSFORM TLVLIB_QT_COMPONENTS PREPEND ${tlvlib_qt}:: OUTPUT_VARIABLE TLVLIB_QT)
    list(TRANSFORM TLVLIB_QT_COMPONENTS PREPEND ${tlvlib_qt} OUTPUT_VARIABLE TLVLIB_PKGCONFIG_QT)
    list(JOIN TLVLIB_PKGCONFIG_QT " " TLVLIB_PKGCONFIG_QT)
else()
    message(FATAL_ERROR "TLVLIB_QT_VERSION is ${TLVLIB_QT_VERSION}; it can be 5, 6, or 4 for the device")
endif()
