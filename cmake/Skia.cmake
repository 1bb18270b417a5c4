# Defines Skia::Skia, the static Skia library that the raster backend and its tests link.
#
# tools/build-skia finds or builds it; SKIA_DIR, as a cache or an environment variable, names one
# that is already there.
include_guard(GLOBAL)
set(SKIA_DIR "$ENV{SKIA_DIR}" CACHE PATH "Folder of a finished Skia; empty: build or reuse one")

find_package(Freetype REQUIRED GLOBAL)
find_package(PNG REQUIRED GLOBAL)
find_package(Threads REQUIRED GLOBAL)

execute_process(
    COMMAND ${CMAKE_COMMAND} -E env "SKIA_DIR=${SKIA_DIR}"
            ${CMAKE_CURRENT_LIST_DIR}/../tools/build-skia
    OUTPUT_VARIABLE skia_folder
    OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE skia_status)
if(NOT skia_status EQUAL 0)
    message(FATAL_ERROR "There is no Skia to build with; tools/build-skia says above why")
endif()
message(STATUS "Skia: ${skia_folder}")

file(STRINGS "${skia_folder}/skia.defines" skia_defines)
add_library(Skia::Skia STATIC IMPORTED GLOBAL)
set_target_properties(Skia::Skia PROPERTIES
    IMPORTED_LOCATION "${skia_folder}/lib/libskia.a"
    INTERFACE_INCLUDE_DIRECTORIES "${skia_folder}"
    INTERFACE_COMPILE_DEFINITIONS "${skia_defines}"
    INTERFACE_LINK_LIBRARIES "Freetype::Freetype;PNG::PNG;Threads::Threads;${CMAKE_DL_LIBS}")

if(NIMBRA_SANITIZE MATCHES "address")
    set_target_properties(Skia::Skia PROPERTIES INTERFACE_COMPILE_OPTIONS
        "$<$<COMPILE_LANGUAGE:CXX>:SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/skia/no-address-sanitizer.inc>")
endif()
