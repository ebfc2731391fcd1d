# Installs the library, and the files that its users need to compile, find it and write QML. The tool and the example
# install themselves. Each component is a Debian package, see PlugininterfacePackages.cmake.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${PLUGININTERFACE_NAME}")
install(TARGETS plugininterface EXPORT ${PLUGININTERFACE_NAME}Targets
    LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(EXPORT ${PLUGININTERFACE_NAME}Targets NAMESPACE plugininterface:: DESTINATION "${package_dir}" COMPONENT development)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/plugininterfaceConfig.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${PLUGININTERFACE_NAME}Config.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/${PLUGININTERFACE_NAME}ConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${PLUGININTERFACE_NAME}Config.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/${PLUGININTERFACE_NAME}ConfigVersion.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

# The CMake package and the pkg-config file work wherever the tree is moved to.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pc_to_prefix "/${pkgconfig_dir}" "/")
cmake_path(NORMAL_PATH pc_to_prefix)
configure_file("${PROJECT_SOURCE_DIR}/cmake/plugininterface.pc.in" ${PLUGININTERFACE_NAME}.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${PLUGININTERFACE_NAME}.pc" DESTINATION "${pkgconfig_dir}" COMPONENT development)

get_target_property(public_headers plugininterface PLUGININTERFACE_PUBLIC_HEADERS)
foreach(header IN LISTS public_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${PLUGININTERFACE_NAME}/${folder}"
        COMPONENT development)
endforeach()

install(DIRECTORY "${PROJECT_BINARY_DIR}/qml/GlobalDefines"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/${PLUGININTERFACE_NAME}/qml" COMPONENT development)
