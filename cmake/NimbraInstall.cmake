# What other projects find Nimbra by. nimbra_library() installs the libraries and their headers.
include(CMakePackageConfigHelpers)

set(NIMBRA_PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/Nimbra)

install(EXPORT NimbraTargets NAMESPACE Nimbra:: DESTINATION ${NIMBRA_PACKAGE_FOLDER})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/NimbraConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/NimbraConfig.cmake INSTALL_DESTINATION ${NIMBRA_PACKAGE_FOLDER})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/NimbraConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/NimbraConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/NimbraConfigVersion.cmake
    DESTINATION ${NIMBRA_PACKAGE_FOLDER})
