# The Debian packages, unpacked into a root of their own: complete, without a fault that lintian finds, and of use to a
# consumer, an operator and a player.
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

file(REMOVE_RECURSE "${WORK_DIR}")
set(packages "${WORK_DIR}/packages")
set(root "${WORK_DIR}/root")
execute_process(COMMAND "${CPACK_COMMAND}" --config "${BUILD_DIR}/CPackConfig.cmake" -B "${packages}"
    WORKING_DIRECTORY "${BUILD_DIR}" COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
if(QT_MAJOR EQUAL 5)
    set(library_package libplugininterface1)
    set(library_needs libqt5sql5-sqlite libqt5multimedia5-plugins libqt5core5a)
    set(example_needs qml-module-qtquick2 libqt5svg5)
else()
    set(library_package libplugininterface-qt6-1)
    set(library_needs libqt6sql6-sqlite libqt6multimedia6 libqt6core6)
    set(example_needs qml6-module-qtquick libqt6svg6)
endif()
set(wanted lib${NAME}-dev ${library_package} ${NAME}-example ${NAME}-tools)
if(DOCS)
    list(APPEND wanted lib${NAME}-doc)
endif()
list(SORT wanted)

file(GLOB debs "${packages}/*.deb")
run(lintian --fail-on error,warning ${debs})
set(names)
set(synopses)
foreach(deb IN LISTS debs)
    run(dpkg -x "${deb}" "${root}")
    execute_process(COMMAND dpkg-deb -W --showformat "\${Package};\${binary:Synopsis}" "${deb}" OUTPUT_VARIABLE shown
        COMMAND_ERROR_IS_FATAL ANY)
    list(POP_FRONT shown name)
    execute_process(COMMAND dpkg -f "${deb}" OUTPUT_FILE "${packages}/${name}.control" COMMAND_ERROR_IS_FATAL ANY)
    if(shown IN_LIST synopses)
        message(FATAL_ERROR "${name} says of itself what another package says: ${shown}")
    endif()
    list(APPEND names "${name}")
    list(APPEND synopses "${shown}")
endforeach()
list(SORT names)
if(NOT names STREQUAL wanted)
    message(FATAL_ERROR "packages: ${names}\nwanted: ${wanted}")
endif()
expect_texts("${packages}/${library_package}.control" "Multi-Arch: same" ${library_needs})
expect_texts("${packages}/lib${NAME}-dev.control" "Multi-Arch: same" "${library_package} (= 1.0.0)")
expect_texts("${packages}/${NAME}-example.control" "${library_package} (= 1.0.0)" ${example_needs})

# The packages of Qt 5 and of Qt 6 have no file in common.
file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${root}" "${root}/*")
if(QT_MAJOR EQUAL 5)
    list(FILTER files INCLUDE REGEX "[-_]qt6")
else()
    list(FILTER files EXCLUDE REGEX "[-_]qt6")
endif()
if(files)
    message(FATAL_ERROR "files whose names don't tell the Qt: ${files}")
endif()

run(appstreamcli validate-tree --no-net --strict "${root}/usr")
run(desktop-file-validate "${root}/usr/share/applications/plugininterface-example${SUFFIX}.desktop")
if(DOCS)
    expect_texts("${root}/usr/share/doc/lib${NAME}-doc/html/index.html" "plugins.html")
    expect_texts("${root}/usr/share/doc/lib${NAME}-doc/examples/minimal/host.cpp" "main(")
endif()

configure_consumer("${WORK_DIR}/build" -D "CMAKE_PREFIX_PATH=${root}/usr")
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
run("${WORK_DIR}/build/consumer")
file(GLOB library "${root}/usr/lib/*-linux-*/lib${NAME}.so.1")
cmake_path(GET library PARENT_PATH library_dir)
set(ENV{LD_LIBRARY_PATH} "${library_dir}")
run("${root}/usr/bin/plugininterface-data${SUFFIX}" config keys OUTPUT_QUIET)

# Starts the packaged example for some seconds, in an installation that the user may write to, and keeps what it says.
function(start_example name)
    execute_process(COMMAND timeout 8 "${root}/usr/bin/plugininterface-example${SUFFIX}"
        ERROR_FILE "${WORK_DIR}/${name}.log" OUTPUT_FILE "${WORK_DIR}/${name}.out" RESULT_VARIABLE result)
    if(NOT result EQUAL 124) # of timeout
        file(READ "${WORK_DIR}/${name}.log" log)
        message(FATAL_ERROR "the example has ended by itself: ${result}\n${log}")
    endif()
endfunction()

set(ENV{QT_QPA_PLATFORM} offscreen)
# The manual page tells of each option.
execute_process(COMMAND "${root}/usr/bin/plugininterface-example${SUFFIX}" --help OUTPUT_VARIABLE help
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND man "${root}/usr/share/man/man1/plugininterface-example${SUFFIX}.1.gz"
    OUTPUT_FILE "${WORK_DIR}/manual.txt" COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "--[a-z-]+" options "${help}")
expect_texts("${WORK_DIR}/manual.txt" --tables ${options})

start_example(complete)
file(READ "${WORK_DIR}/complete.log" log)
if(log MATCHES "aren't installed|isn't installed|is missing|can't be used")
    message(FATAL_ERROR "something is missed: ${log}")
endif()

# Without the packages of which the linker knows nothing: a Qt with the plugins of the display, and, in Qt 6, of sound,
# which come with the library that needs them.
execute_process(COMMAND "${QMAKE}" -query QT_INSTALL_PLUGINS OUTPUT_VARIABLE plugins OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
set(missed "Qt's SQLite driver isn't installed")
file(COPY "${plugins}/platforms" DESTINATION "${WORK_DIR}/plugins")
if(QT_MAJOR EQUAL 5)
    list(APPEND missed "Qt's multimedia plugins aren't installed: nothing is heard.")
else()
    file(COPY "${plugins}/multimedia" DESTINATION "${WORK_DIR}/plugins")
endif()
file(WRITE "${library_dir}/plugininterface-example${SUFFIX}/Contents/Client/qt.conf" "[Paths]\nPlugins = ${WORK_DIR}/plugins\n")
start_example(without_plugins)
expect_texts("${WORK_DIR}/without_plugins.log" ${missed})
