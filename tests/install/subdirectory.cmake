cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

# It is only configured: its library would be the same as ours, and take as long to build.
file(REMOVE_RECURSE "${WORK_DIR}")
configure_consumer("${WORK_DIR}" -D "PLUGININTERFACE_SOURCE_DIR=${SOURCE_DIR}")

# Whoever takes the project in gets the library, and none of its tests, examples and benchmarks.
file(GLOB folders RELATIVE "${WORK_DIR}/plugininterface" "${WORK_DIR}/plugininterface/*")
if(NOT "src" IN_LIST folders)
    message(FATAL_ERROR "the library is not a part of ${WORK_DIR}")
endif()
foreach(folder tests examples bench tools)
    if(folder IN_LIST folders)
        message(FATAL_ERROR "the project brings its ${folder} along")
    endif()
endforeach()
