# What `cmake --install` puts where: library, headers, CMake package, pkg-config file, documents. The
# program installs itself in cli/.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kelp)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KelpConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/KelpConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KelpConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(EXPORT KelpTargets NAMESPACE Kelp:: DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/KelpConfig.cmake
              ${PROJECT_BINARY_DIR}/KelpConfigVersion.cmake DESTINATION ${package_dir})

# The prefix is given relative to the file's own folder, so that the installed tree can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH KELP_PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" KELP_PREFIX_FROM_PKGCONFIG ${KELP_PREFIX_FROM_PKGCONFIG})
configure_file(${CMAKE_CURRENT_LIST_DIR}/kelp.pc.in ${PROJECT_BINARY_DIR}/kelp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kelp.pc DESTINATION ${pkgconfig_dir})

install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
