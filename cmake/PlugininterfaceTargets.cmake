# One function for each kind of target. It defines what all targets of the kind have in common (warnings, visibility,
# strictness of Qt, output folders), so that the CMakeLists.txt of a folder only lists sources. Unknown arguments are
# fatal.

# On Debian, the folder of libraries is that of their architecture below every prefix, not only below /usr: what is
# installed has the layout of the packages. Not in the cache, in which a variable is what the user has chosen.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_INSTALL_LIBDIR AND CMAKE_LIBRARY_ARCHITECTURE
   AND EXISTS /etc/debian_version)
    set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}")
endif()
include(GNUInstallDirs)

# The installation tree that the build creates for the example client, in the layout that Pathes describes.
set(PLUGININTERFACE_INSTALLATION_DIR "${PROJECT_BINARY_DIR}/installation/Contents")
# The folder into which it is installed, together with the servers.
set(PLUGININTERFACE_EXAMPLE_DIR "${CMAKE_INSTALL_LIBDIR}/plugininterface-example${PLUGININTERFACE_SUFFIX}")

macro(_plugininterface_parse function options single multi)
    cmake_parse_arguments(ARG "${options}" "${single}" "${multi}" ${ARGN})
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${function}: unknown arguments: ${ARG_UNPARSED_ARGUMENTS}")
    endif()
endmacro()

# Sets the compiler options of all targets of this project.
function(plugininterface_strict target)
    target_compile_features(${target} PRIVATE cxx_std_17)
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_FOREACH
        QT_NO_KEYWORDS
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_URL_CAST_FROM_STRING
        QT_DEPRECATED_WARNINGS
        QT_STRICT_ITERATORS)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
        -Woverloaded-virtual -Wundef>
        # g++'s -Wconversion doesn't include it, and moc's output has such conversions.
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-sign-conversion>
        $<$<CXX_COMPILER_ID:MSVC>:/W4>)
    if(PLUGININTERFACE_WERROR)
        set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR ON)
    endif()
    # Libraries that a target links but doesn't use don't become its dependencies. All functions are bound at the start,
    # after which nobody can redirect them.
    target_link_options(${target} PRIVATE $<$<PLATFORM_ID:Linux>:LINKER:--as-needed,-z,now>)
endfunction()

# Lets a target on top of the library use headers of Qt that are compiled once for all targets of its kind, which are
# programs and tests: plugininterface_use_precompiled_headers(<kind> <target>)
function(plugininterface_use_precompiled_headers kind target)
    if(NOT PLUGININTERFACE_PRECOMPILED_HEADERS)
        return()
    endif()
    set(compiled plugininterface_precompiled_${kind})
    if(NOT TARGET ${compiled})
        file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/precompiled/empty.cpp" CONTENT "")
        add_library(${compiled} OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/precompiled/empty.cpp")
        plugininterface_strict(${compiled})
        set_target_properties(${compiled} PROPERTIES AUTOMOC OFF POSITION_INDEPENDENT_CODE ON UNITY_BUILD OFF)
        target_link_libraries(${compiled} PRIVATE plugininterface::plugininterface)
        if(kind STREQUAL "tests")
            plugininterface_compile_quickly(${compiled})
        endif()
        # Without QtTest, whose headers name the folder of each test in Qt 6.
        target_precompile_headers(${compiled} PRIVATE <QtCore> <QtNetwork> <QtSql> <QtWidgets>)
    endif()
    target_precompile_headers(${target} REUSE_FROM ${compiled})
endfunction()

# A test's own code runs once, and takes longer to optimise than to run. The address sanitizer watches the library that it
# tests; where threads meet, both have to be watched. SANITIZED is for tests that do less where all is slower.
function(plugininterface_compile_quickly target)
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-O0>)
    if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
        target_compile_definitions(${target} PRIVATE SANITIZED)
    endif()
    if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address")
        target_compile_options(${target} PRIVATE -fno-sanitize=all)
    endif()
endfunction()

# For a target whose classes with Q_OBJECT are all in sources, which include what moc makes of them: the file for those
# of its headers is empty, and is compiled sooner than precompiled headers are loaded.
function(plugininterface_no_moc_in_headers target)
    set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp"
        PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# A folder of the library:
# plugininterface_library_folder(HEADERS <public headers> SOURCES <sources and private headers>)
# Public headers are installed in a folder of that name, and PLUGININTERFACE_CHECK_HEADERS applies to them.
function(plugininterface_library_folder)
    _plugininterface_parse(plugininterface_library_folder "" "" "HEADERS;SOURCES" ${ARGN})
    target_sources(plugininterface PRIVATE ${ARG_SOURCES} ${ARG_HEADERS})
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
    list(TRANSFORM ARG_HEADERS PREPEND "${folder}/")
    set_property(TARGET plugininterface APPEND PROPERTY PLUGININTERFACE_PUBLIC_HEADERS ${ARG_HEADERS})
endfunction()

# With PLUGININTERFACE_CHECK_HEADERS, compiles one translation unit for each public header, which contains only its
# #include.
function(plugininterface_check_headers_alone)
    if(NOT PLUGININTERFACE_CHECK_HEADERS)
        return()
    endif()
    get_target_property(headers plugininterface PLUGININTERFACE_PUBLIC_HEADERS)
    set(units)
    foreach(header IN LISTS headers)
        string(REGEX REPLACE "\\.h$" ".cpp" unit "${CMAKE_CURRENT_BINARY_DIR}/headers_alone/${header}")
        file(CONFIGURE OUTPUT "${unit}" CONTENT "#include <${header}>\n" @ONLY)
        list(APPEND units "${unit}")
    endforeach()
    add_library(plugininterface_headers_alone OBJECT ${units})
    plugininterface_strict(plugininterface_headers_alone)
    plugininterface_compile_quickly(plugininterface_headers_alone)
    set_target_properties(plugininterface_headers_alone PROPERTIES AUTOMOC OFF UNITY_BUILD OFF)
    target_link_libraries(plugininterface_headers_alone PRIVATE plugininterface::plugininterface)
endfunction()

# A command-line tool: plugininterface_tool(<name> SOURCES ... [LIBRARIES ...] [UNOPTIMIZED])
# UNOPTIMIZED is for programs of the build itself.
function(plugininterface_tool name)
    _plugininterface_parse(plugininterface_tool "UNOPTIMIZED" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    plugininterface_strict(${name})
    set(kind programs)
    if(ARG_UNOPTIMIZED)
        plugininterface_compile_quickly(${name})
        set(kind tests)
    endif()
    plugininterface_use_precompiled_headers(${kind} ${name})
    target_link_libraries(${name} PRIVATE plugininterface::plugininterface ${ARG_LIBRARIES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endfunction()

# The manual page of a program that is installed, made from the template <name>.1.in:
# plugininterface_manual(<name> COMPONENT <component> [HELP_OF <target>])
# With HELP_OF, the page contains what the target prints with --help.
function(plugininterface_manual name)
    _plugininterface_parse(plugininterface_manual "" "COMPONENT;HELP_OF" "" ${ARGN})
    set(template "${CMAKE_CURRENT_SOURCE_DIR}/${name}.1.in")
    set(page "${CMAKE_CURRENT_BINARY_DIR}/${name}${PLUGININTERFACE_SUFFIX}.1")
    set(script "${PROJECT_SOURCE_DIR}/cmake/manual.cmake")
    set(tool)
    if(ARG_HELP_OF)
        set(tool -D "TOOL=$<TARGET_FILE:${ARG_HELP_OF}>")
    endif()
    add_custom_command(OUTPUT "${page}.gz"
        COMMAND "${CMAKE_COMMAND}"
                -D "NAME=${name}" -D "SUFFIX=${PLUGININTERFACE_SUFFIX}" -D "VERSION=${PROJECT_VERSION}"
                -D "IN=${template}" -D "OUT=${page}" ${tool} -P "${script}"
        COMMAND gzip -9nc "${page}" > "${page}.gz"
        DEPENDS "${template}" "${script}" ${ARG_HELP_OF}
        VERBATIM)
    add_custom_target(${name}_manual ALL DEPENDS "${page}.gz")
    install(FILES "${page}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${ARG_COMPONENT})
endfunction()

# A library of the example that its programs and their tests share:
# plugininterface_example_library(<name> SOURCES ... [LIBRARIES ...])
function(plugininterface_example_library name)
    _plugininterface_parse(plugininterface_example_library "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    plugininterface_strict(${name})
    plugininterface_use_precompiled_headers(programs ${name})
    # Plugins are shared objects and may link it.
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/examples")
    target_link_libraries(${name} PUBLIC plugininterface::plugininterface ${ARG_LIBRARIES})
endfunction()

# A program of the example:
# plugininterface_example(<name> SOURCES ... [LIBRARIES ...] [INSTALLATION_NAME <file>] [UNOPTIMIZED])
# With INSTALLATION_NAME it is built under that name in the client folder of the installation tree, otherwise in bin.
function(plugininterface_example name)
    _plugininterface_parse(plugininterface_example "UNOPTIMIZED" "INSTALLATION_NAME" "SOURCES;LIBRARIES" ${ARGN})
    set(how)
    if(ARG_UNOPTIMIZED)
        set(how UNOPTIMIZED)
    endif()
    plugininterface_tool(${name} SOURCES ${ARG_SOURCES} LIBRARIES ${ARG_LIBRARIES} ${how})
    if(ARG_INSTALLATION_NAME)
        set_target_properties(${name} PROPERTIES
            OUTPUT_NAME "${ARG_INSTALLATION_NAME}"
            SUFFIX ""
            RUNTIME_OUTPUT_DIRECTORY "${PLUGININTERFACE_INSTALLATION_DIR}/Client")
    endif()
endfunction()

# Installs programs and plugins of the example in the layout of the build:
# plugininterface_install_example(<folder> <target>...)
function(plugininterface_install_example folder)
    set(destination "${PLUGININTERFACE_EXAMPLE_DIR}/${folder}")
    file(RELATIVE_PATH to_library "/${destination}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_library}")
    install(TARGETS ${ARGN} DESTINATION "${destination}" COMPONENT example)
endfunction()

# A plugin: plugininterface_plugin(<name> SOURCES ... [LIBRARIES ...] [DIRECTORY <output folder>])
# Without DIRECTORY it is built in the plugin folder of the installation tree, where the example client finds it.
function(plugininterface_plugin name)
    _plugininterface_parse(plugininterface_plugin "" "DIRECTORY" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT ARG_DIRECTORY)
        set(ARG_DIRECTORY "${PLUGININTERFACE_INSTALLATION_DIR}/Client/Plugins")
    endif()
    add_library(${name} MODULE ${ARG_SOURCES})
    plugininterface_strict(${name})
    plugininterface_use_precompiled_headers(programs ${name})
    target_link_libraries(${name} PRIVATE plugininterface::plugininterface ${ARG_LIBRARIES})
    set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${ARG_DIRECTORY}")
endfunction()

# A program that tests start: plugininterface_test_program(<name> SOURCES ... [LIBRARIES ...] [DEFINITIONS ...])
function(plugininterface_test_program name)
    _plugininterface_parse(plugininterface_test_program "" "" "SOURCES;LIBRARIES;DEFINITIONS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    plugininterface_strict(${name})
    plugininterface_compile_quickly(${name})
    plugininterface_use_precompiled_headers(tests ${name})
    plugininterface_no_moc_in_headers(${name})
    set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
    target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
    # QSKIP() has a variadic macro argument, of which C++ before C++20 requires at least one.
    target_compile_options(${name} PRIVATE
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE plugininterface::plugininterface Qt${QT_VERSION_MAJOR}::Test ${ARG_LIBRARIES})
endfunction()

# A Qt Test program that is a test:
# plugininterface_test(<name> SOURCES ... [LIBRARIES ...] [DEFINITIONS ...] [SERIAL | WAITS])
# A warning in its log that the test did not announce with QTest::ignoreMessage() fails it. SERIAL is for tests that
# can't run at the same time as another one; say why beside it. A test counts as two of "ctest --parallel", and as one if
# it mostly WAITS.
function(plugininterface_test name)
    _plugininterface_parse(plugininterface_test "SERIAL;WAITS" "" "SOURCES;LIBRARIES;DEFINITIONS" ${ARGN})
    plugininterface_test_program(${name}
        SOURCES ${ARG_SOURCES} LIBRARIES ${ARG_LIBRARIES} DEFINITIONS ${ARG_DEFINITIONS})
    set(processors 2)
    if(ARG_WAITS)
        set(processors 1)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp"
        FAIL_REGULAR_EXPRESSION "QWARN  :|QCRITICAL:|QSYSTEM:"
        RUN_SERIAL ${ARG_SERIAL}
        LABELS "$<$<BOOL:${ARG_SERIAL}>:serial>"
        PROCESSORS ${processors})
endfunction()

# A Google Benchmark program: plugininterface_benchmark(<name> SOURCES ... [LIBRARIES ...])
function(plugininterface_benchmark name)
    _plugininterface_parse(plugininterface_benchmark "" "" "SOURCES;LIBRARIES" ${ARGN})
    plugininterface_tool(${name} SOURCES ${ARG_SOURCES} LIBRARIES benchmark::benchmark testsupport ${ARG_LIBRARIES})
    plugininterface_no_moc_in_headers(${name})
endfunction()
