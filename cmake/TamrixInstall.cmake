# The rest of an installation: headers, files that are not built, and the CMake package with which
# others build plug-ins (find_package(Tamrix)). The tree works from any place: nothing in it names
# the folder in which it was built or installed.

include(CMakePackageConfigHelpers)

foreach(folder base platform shared vision interpreter)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/${folder}
            DESTINATION include/tamrix
            FILES_MATCHING PATTERN "*.h"
            # The runner's end of connections builds on messages that are not installed.
            PATTERN remote EXCLUDE
            PATTERN display EXCLUDE)
endforeach()
install(DIRECTORY ${TAMRIX_PREFIX_DIR}/etc ${TAMRIX_PREFIX_DIR}/scriptmodules DESTINATION .)
install(DIRECTORY DESTINATION lib/exec)

set(package lib/cmake/Tamrix)
install(EXPORT TamrixTargets NAMESPACE Tamrix:: DESTINATION ${package})
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/TamrixConfig.cmake.in
    ${PROJECT_BINARY_DIR}/cmake/TamrixConfig.cmake
    INSTALL_DESTINATION ${package}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/cmake/TamrixConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
        ${PROJECT_BINARY_DIR}/cmake/TamrixConfig.cmake
        ${PROJECT_BINARY_DIR}/cmake/TamrixConfigVersion.cmake
    DESTINATION ${package})
