# Which Qt the library builds against, and the names that keep the two builds apart when both
# are installed into one prefix. The Qt 5 build keeps the plain names; another major version
# adds "Qt<major>" to the package, the library file, the header folder and the pkg-config file.
set(QT_MAJOR_VERSION 5 CACHE STRING "Qt major version to build against: 5 (default) or 6")
set_property(CACHE QT_MAJOR_VERSION PROPERTY STRINGS 5 6)

if(QT_MAJOR_VERSION EQUAL 5)
  set(ZUCORE_QT_MINIMUM 5.15)
  set(ZUCORE_QT_PRIVATE_COMPONENTS)
  set(ZUCORE_NAME_SUFFIX "")
elseif(QT_MAJOR_VERSION EQUAL 6)
  set(ZUCORE_QT_MINIMUM 6.2)
  # Binary JSON moved out of Qt Core; nothing else of the compatibility module is used.
  set(ZUCORE_QT_PRIVATE_COMPONENTS Core5Compat)
  set(ZUCORE_NAME_SUFFIX "Qt6")
else()
  message(FATAL_ERROR "QT_MAJOR_VERSION must be 5 or 6, not '${QT_MAJOR_VERSION}'")
endif()

set(ZUCORE_QT Qt${QT_MAJOR_VERSION})
find_package(${ZUCORE_QT} ${ZUCORE_QT_MINIMUM} REQUIRED
             COMPONENTS Core Gui Widgets ${ZUCORE_QT_PRIVATE_COMPONENTS})
find_package(${ZUCORE_QT} ${ZUCORE_QT_MINIMUM} QUIET COMPONENTS DBus)

# zucore, zucoreQt6: package, library file, pkg-config file and header folder.
set(ZUCORE_PACKAGE_NAME zucore${ZUCORE_NAME_SUFFIX})
# The headers of a suffixed build go one folder deeper (include/zucoreQt6/zucore/), so that
# <zucore/ClassName.h> reads the same for both.
set(ZUCORE_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
if(ZUCORE_NAME_SUFFIX)
  string(APPEND ZUCORE_INSTALL_INCLUDEDIR /${ZUCORE_PACKAGE_NAME})
endif()
