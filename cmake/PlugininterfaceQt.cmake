# Finds the Qt with which everything is built, and names what is installed by it, so that what is
# built with Qt 5 and with Qt 6 can be installed side by side.

if(NOT PLUGININTERFACE_QT MATCHES "^[56]$")
    message(FATAL_ERROR "PLUGININTERFACE_QT is ${PLUGININTERFACE_QT}, but must be 5 or 6")
endif()
if(PLUGININTERFACE_QT EQUAL 5)
    set(PLUGININTERFACE_QT_MINIMUM 5.15)
    set(PLUGININTERFACE_SUFFIX "")
else()
    set(PLUGININTERFACE_QT_MINIMUM 6.4)
    set(PLUGININTERFACE_SUFFIX -qt6)
endif()
set(PLUGININTERFACE_NAME plugininterface${PLUGININTERFACE_SUFFIX}) # of the library, its packages and its folders

# plugininterface_find_qt(<component>...)
macro(plugininterface_find_qt)
    find_package(QT NAMES Qt${PLUGININTERFACE_QT} ${PLUGININTERFACE_QT_MINIMUM} REQUIRED COMPONENTS ${ARGN})
    find_package(Qt${QT_VERSION_MAJOR} ${PLUGININTERFACE_QT_MINIMUM} REQUIRED COMPONENTS ${ARGN})
endmacro()
