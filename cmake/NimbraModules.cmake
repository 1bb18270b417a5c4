# A module is one row of the include table in ARCHITECTURE.md: an object library whose include path
# holds what that row allows and no more.

# nimbra_module(NAME SOURCES … INCLUDES … LINKS …)
function(nimbra_module name)
    cmake_parse_arguments(MODULE "" "" "SOURCES;INCLUDES;LINKS" ${ARGN})
    add_library(${name} OBJECT ${MODULE_SOURCES})
    target_include_directories(${name} PRIVATE ${MODULE_INCLUDES})
    target_link_libraries(${name} PRIVATE nimbra_library_flags ${MODULE_LINKS})
endfunction()

# What the thread sanitizer's run needs built; tests labelled "thread" belong to it.
add_custom_target(thread-tests)

# nimbra_test(NAME SOURCES … LINKS … [LABELS …]): a GoogleTest program that runs under ctest. Its
# include path holds tests/, so that "Support/…" names the shared helpers.
function(nimbra_test name)
    cmake_parse_arguments(TEST "" "" "SOURCES;INCLUDES;LINKS;LABELS" ${ARGN})
    add_executable(${name} ${TEST_SOURCES})
    target_include_directories(${name} PRIVATE ${NIMBRA_TESTS_DIR} ${TEST_INCLUDES})
    target_link_libraries(${name} PRIVATE nimbra_flags GTest::gmock GTest::gtest_main ${TEST_LINKS})
    # Memory that cannot be had is NULL for tests under the address sanitizer, too.
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120
        ENVIRONMENT "ASAN_OPTIONS=allocator_may_return_null=1" LABELS "${TEST_LABELS}")
    if("thread" IN_LIST TEST_LABELS)
        add_dependencies(thread-tests ${name})
    endif()
endfunction()

set(NIMBRA_HOST_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/Platform/Host/Headers)
set(NIMBRA_CF_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/Platform/CoreFoundation/Headers)
set(NIMBRA_SERVICES_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/Platform/Services/Headers)
set(NIMBRA_CG_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/Headers)
set(NIMBRA_CG_PRIVATE_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/PrivateHeaders)
set(NIMBRA_CG_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/Sources)
set(NIMBRA_FM_HEADERS
    ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/Subprojects/FontManager/Headers)
set(NIMBRA_FM_SOURCES
    ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/Subprojects/FontManager/Sources)
set(NIMBRA_IMAGEIO_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/ImageIO/Headers)
set(NIMBRA_IMAGEIO_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/CoreGraphics/ImageIO/Sources)
set(NIMBRA_TESTS_DIR ${CMAKE_CURRENT_SOURCE_DIR}/tests)

# nimbra_headers(LIBRARY NAME FOLDER): the headers FOLDER/NAME belong to the library's interface.
function(nimbra_headers library name folder)
    target_include_directories(${library} INTERFACE
        $<BUILD_INTERFACE:${folder}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    install(DIRECTORY ${folder}/${name} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/${name}.modulemap
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name} RENAME module.modulemap)
endfunction()

# nimbra_library(NAME HEADERS FOLDER): what our shared libraries have in common: their version, the
# names that they export (cmake/NAME.map), and how they and their headers are installed and found.
function(nimbra_library name headers)
    set(map ${PROJECT_SOURCE_DIR}/cmake/${name}.map)
    target_link_options(${name} PRIVATE -Wl,--version-script=${map})
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION 0 LINK_DEPENDS ${map} INSTALL_RPATH $ORIGIN)
    nimbra_headers(${name} ${name} ${headers})
    add_library(Nimbra::${name} ALIAS ${name})

    install(TARGETS ${name} EXPORT NimbraTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
