# What README and the tutorial tell a newcomer to do, with what is installed and nothing else of the project.
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

file(REMOVE_RECURSE "${WORK_DIR}")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
set(ENV{CXX} "${CXX_COMPILER}")
set(ENV{CXXFLAGS} "${CXX_FLAGS}")
set(ENV{CMAKE_BUILD_TYPE} "${BUILD_TYPE}")
set(ENV{CMAKE_GENERATOR} "${GENERATOR}")
set(ENV{CMAKE_CXX_COMPILER_LAUNCHER} "${CXX_COMPILER_LAUNCHER}")
set(ENV{QT_QPA_PLATFORM} offscreen)
run("${CMAKE_CURRENT_LIST_DIR}/newcomer.sh" "${SOURCE_DIR}" "${WORK_DIR}" ${NAME})
