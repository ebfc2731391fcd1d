# The Debian packages, made by `cpack` in the build folder: the library, its development files, its documentation, the
# tool for operators, and the example. Each is a component of the installation; what isn't built has none.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PLUGININTERFACE_NAME})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # would be the first line of each description
set(CPACK_PACKAGE_CONTACT "Maintainers of plugininterface <maintainers@users.noreply.c-seed-65f3c664.example>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/packages/clean_binaries.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/packages/finish.cmake")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE plugininterface)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src") # where the other packages find the library

# The dependency of packages that link the library, and the update of the linker's cache.
set(soname_version ${PROJECT_VERSION_MAJOR})
set(library_package lib${PLUGININTERFACE_NAME}${soname_version})
if(PLUGININTERFACE_NAME MATCHES "[0-9]$")
    set(library_package lib${PLUGININTERFACE_NAME}-${soname_version})
endif()
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/packages/shlibs"
    CONTENT "lib${PLUGININTERFACE_NAME} ${soname_version} ${library_package} (>= ${PROJECT_VERSION})\n")
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/packages/triggers" CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    "${PROJECT_BINARY_DIR}/packages/shlibs" "${PROJECT_BINARY_DIR}/packages/triggers")

set(changelog "${PROJECT_BINARY_DIR}/packages/changelog.gz")
add_custom_command(OUTPUT "${changelog}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/packages"
    COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/cmake/packages/changelog" > "${changelog}"
    DEPENDS "${PROJECT_SOURCE_DIR}/cmake/packages/changelog"
    VERBATIM)
add_custom_target(plugininterface_packages_changelog ALL DEPENDS "${changelog}")

# debian_package(<component> NAME <name> SECTION <section> SYNOPSIS <line> DESCRIPTION <line>...
#     [MULTIARCH <value>] [ARCHITECTURE <architecture>] [DEPENDS <package>...] [SUGGESTS <package>...])
# The packages of linked libraries are detected; DEPENDS lists dependencies that the linker doesn't see. A full stop
# on a line of its own separates paragraphs of the description. The component's file in packages/overrides says which
# findings of lintian don't count, and why.
set(CPACK_COMPONENTS_ALL)
macro(debian_package component)
    cmake_parse_arguments(DEB "" "NAME;SECTION;SYNOPSIS;MULTIARCH;ARCHITECTURE" "DESCRIPTION;DEPENDS;SUGGESTS" ${ARGN})
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    string(TOUPPER "${component}" upper)
    list(JOIN DEB_DESCRIPTION "\n" description)
    list(JOIN DEB_DEPENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
    list(JOIN DEB_SUGGESTS ", " CPACK_DEBIAN_${upper}_PACKAGE_SUGGESTS)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${DEB_NAME}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${DEB_SECTION}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_MULTIARCH "${DEB_MULTIARCH}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_ARCHITECTURE "${DEB_ARCHITECTURE}")
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${DEB_SYNOPSIS}\n${description}")
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/packages/copyright" "${changelog}"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${DEB_NAME}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    if(EXISTS "${PROJECT_SOURCE_DIR}/cmake/packages/overrides/${component}")
        install(FILES "${PROJECT_SOURCE_DIR}/cmake/packages/overrides/${component}" RENAME "${DEB_NAME}"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${component} EXCLUDE_FROM_ALL)
    endif()
endmacro()

# What Qt loads by itself.
if(QT_VERSION_MAJOR EQUAL 5)
    set(qt_plugins libqt5sql5-sqlite libqt5multimedia5-plugins)
    set(qt_pictures libqt5svg5)
    set(qt_headers "qtbase5-dev (>= ${PLUGININTERFACE_QT_MINIMUM})")
    set(qml_modules qml-module-qtquick-controls2 qml-module-qtquick-layouts qml-module-qtquick-window2
        qml-module-qtquick2)
else()
    set(qt_plugins libqt6sql6-sqlite) # those of QtMultimedia come with it
    set(qt_pictures libqt6svg6)
    set(qt_headers "qt6-base-dev (>= ${PLUGININTERFACE_QT_MINIMUM})")
    set(qml_modules qml6-module-qtqml-models qml6-module-qtqml-workerscript qml6-module-qtquick
        qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-templates
        qml6-module-qtquick-window)
endif()

if(PLUGININTERFACE_BUILD_DOCS)
    set(documentation_package lib${PLUGININTERFACE_NAME}-doc)
endif()
set(same_library "${library_package} (= ${PROJECT_VERSION})")
set(about
    "Host programs and their plugins load this library together. It carries their"
    "traffic, keeps settings and local data, and holds the models and texts that"
    "the views show."
    ".")
debian_package(library NAME ${library_package} SECTION libs MULTIARCH same
    SYNOPSIS "core library of an online poker client and its plugins"
    DESCRIPTION ${about}
                "This package contains the shared library, built with Qt ${QT_VERSION_MAJOR}."
    DEPENDS ${qt_plugins})
debian_package(development NAME lib${PLUGININTERFACE_NAME}-dev SECTION libdevel MULTIARCH same
    SYNOPSIS "core library of an online poker client (development files)"
    DESCRIPTION ${about}
                "This package contains the headers, the CMake package, the pkg-config file and"
                "the description of the QML types, for those who write hosts and plugins with"
                "Qt ${QT_VERSION_MAJOR}."
    DEPENDS "${same_library}" "${qt_headers}"
    SUGGESTS ${documentation_package})
if(PLUGININTERFACE_BUILD_DOCS)
    debian_package(documentation NAME ${documentation_package} SECTION doc ARCHITECTURE all MULTIARCH foreign
        SYNOPSIS "core library of an online poker client (documentation)"
        DESCRIPTION ${about}
                    "This package contains the reference of the classes, settings, events and"
                    "databases, guides for those who write hosts and plugins, run a client or"
                    "translate it, and the sources of the smallest host and plugin.")
    set(doc_dir "${CMAKE_INSTALL_DATADIR}/doc/${documentation_package}")
    set(html_dir "${doc_dir}/html")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/packages/doc-base.in" "${PROJECT_BINARY_DIR}/packages/doc-base" @ONLY)
    install(CODE "if(NOT EXISTS \"${PROJECT_BINARY_DIR}/docs/html/index.html\")
        message(FATAL_ERROR \"The documentation isn't built: build the target docs before the packages.\")
    endif()" COMPONENT documentation EXCLUDE_FROM_ALL)
    install(DIRECTORY "${PROJECT_BINARY_DIR}/docs/html" DESTINATION "${doc_dir}"
        COMPONENT documentation EXCLUDE_FROM_ALL)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/minimal" DESTINATION "${doc_dir}/examples"
        COMPONENT documentation EXCLUDE_FROM_ALL)
    install(FILES "${PROJECT_BINARY_DIR}/packages/doc-base" RENAME ${documentation_package}
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc-base" COMPONENT documentation EXCLUDE_FROM_ALL)
endif()
if(TARGET plugininterface-data)
    debian_package(tools NAME ${PLUGININTERFACE_NAME}-tools SECTION utils MULTIARCH foreign
        SYNOPSIS "maker of the data files of an online poker client"
        DESCRIPTION "For operators and translators: builds, checks and dumps the configuration and"
                    "the catalogue of texts that a client reads, and makes certificates for its"
                    "servers. The program, which uses Qt ${QT_VERSION_MAJOR}, is"
                    "plugininterface-data${PLUGININTERFACE_SUFFIX}."
        DEPENDS "${same_library}" openssl)
endif()
if(PLUGININTERFACE_BUILD_EXAMPLES)
    debian_package(example NAME ${PLUGININTERFACE_NAME}-example SECTION misc
        SYNOPSIS "example of an online poker client with its plugins and servers"
        DESCRIPTION "A host with a lobby, tables and notes, a game server and a web server, built"
                    "with Qt ${QT_VERSION_MAJOR}, to try out and to start a client from. Nothing is played for money."
        DEPENDS "${same_library}" "${PLUGININTERFACE_NAME}-tools" openssl gstreamer1.0-plugins-good ${qt_pictures} ${qml_modules}
        SUGGESTS libqt${QT_VERSION_MAJOR}sql${QT_VERSION_MAJOR}-psql)
endif()

include(CPack)
