cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

# As strict as at home, built in fewer units, and not optimised, since it is hardly run.
file(REMOVE_RECURSE "${WORK_DIR}")
set(build_type "${BUILD_TYPE}")
set(BUILD_TYPE "")
configure_consumer("${WORK_DIR}" -D "PLUGININTERFACE_SOURCE_DIR=${SOURCE_DIR}" -D PLUGININTERFACE_WERROR=ON
    -D PLUGININTERFACE_PRECOMPILED_HEADERS=ON -D CMAKE_UNITY_BUILD=ON)

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
if(build_type STREQUAL "Release" AND QT_MAJOR EQUAL 5) # once is enough
    run("${CMAKE_COMMAND}" --build "${WORK_DIR}" --target consumer)
    run("${WORK_DIR}/consumer")
endif()
