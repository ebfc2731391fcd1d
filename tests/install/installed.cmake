cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

file(REMOVE_RECURSE "${WORK_DIR}")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")

# The headers of the sources but for the private ones, each of which the consumer includes.
file(GLOB_RECURSE public_headers RELATIVE "${SOURCE_DIR}/src" "${SOURCE_DIR}/src/*.h")
list(FILTER public_headers EXCLUDE REGEX "_p\\.h$")
set(include_dir "${WORK_DIR}/prefix/include/${NAME}")
file(GLOB_RECURSE headers RELATIVE "${include_dir}" "${include_dir}/*")
if(NOT headers STREQUAL public_headers)
    message(FATAL_ERROR "installed headers: ${headers}\npublic headers: ${public_headers}")
endif()
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
list(JOIN headers "" includes)
file(WRITE "${WORK_DIR}/every_header.cpp" "${includes}")
expect_texts("${WORK_DIR}/prefix/share/${NAME}/qml/GlobalDefines/plugins.qmltypes"
    "exports: [\"GlobalDefines/GlobalDefines 1.0\"]" "\"MONEYTYPE_DOLLAR\"")

# Once as a CMake package, once with nothing but a compiler and pkg-config, and once asked for what will be another
# interface.
configure_consumer("${WORK_DIR}/build" -D "CMAKE_PREFIX_PATH=${WORK_DIR}/prefix"
    -D "CONSUMER_SOURCES=${WORK_DIR}/every_header.cpp")
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
run("${WORK_DIR}/build/consumer")

file(GLOB_RECURSE pc "${WORK_DIR}/prefix/*/${NAME}.pc")
cmake_path(GET pc PARENT_PATH pc_dir)
file(GLOB_RECURSE library "${WORK_DIR}/prefix/*/lib${NAME}.so")
cmake_path(GET library PARENT_PATH library_dir)
set(ENV{PKG_CONFIG_PATH} "${pc_dir}")
separate_arguments(flags UNIX_COMMAND "${CXX_FLAGS}")
execute_process(COMMAND pkg-config --cflags --libs "${NAME} >= 1.0" OUTPUT_VARIABLE pc_flags
    COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
run("${CXX_COMPILER}" -std=c++17 -fPIC ${flags} "${CONSUMER_DIR}/main.cpp" ${pc_flags} "-Wl,-rpath,${library_dir}"
    -o "${WORK_DIR}/by_pkg_config")
run("${WORK_DIR}/by_pkg_config")

execute_process(COMMAND "${CMAKE_COMMAND}" -S "${CONSUMER_DIR}" -B "${WORK_DIR}/next"
    -D "CMAKE_PREFIX_PATH=${WORK_DIR}/prefix" -D "CONSUMER_PACKAGE=${NAME}" -D CONSUMER_WANTS=2.0
    RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_QUIET)
if(result EQUAL 0 OR NOT errors MATCHES "compatible with requested version \"2.0\"")
    message(FATAL_ERROR "version 2.0 was found: ${errors}")
endif()
