# Compiler flags that all our own code shares, as interface targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_COLOR_DIAGNOSTICS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(NIMBRA_CCACHE ccache)
if(NIMBRA_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${NIMBRA_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${NIMBRA_CCACHE})
endif()

set(NIMBRA_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

add_library(nimbra_flags INTERFACE)
target_compile_options(nimbra_flags INTERFACE
    -Wall -Wextra -Wconversion -Werror -Wno-missing-field-initializers
    # GoogleTest's macros guard against the dangling else, which g++ does not see.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-dangling-else>
    # Arithmetic that is said to be single precision stays so: no fused multiply-add.
    -ffp-contract=off
    -fvisibility=hidden)

# What ships has no exceptions, so that none can cross the C boundary.
add_library(nimbra_library_flags INTERFACE)
target_link_libraries(nimbra_library_flags INTERFACE nimbra_flags)
target_compile_options(nimbra_library_flags INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions> -fno-plt -fno-semantic-interposition
    -ffunction-sections -fdata-sections)
target_link_options(nimbra_library_flags INTERFACE -Wl,--gc-sections -Wl,-Bsymbolic-functions)

if(NIMBRA_SANITIZE)
    # C functions are called through pointers to their exact types; Skia is built without the
    # sanitizer, so the vptr check has nothing to look at.
    add_compile_options(-fsanitize=${NIMBRA_SANITIZE} -fno-omit-frame-pointer -g1)
    # Programs of C need the part of the runtime that the libraries' C++ calls, too.
    add_link_options(-fsanitize=${NIMBRA_SANITIZE} -fsanitize-link-c++-runtime)
    string(APPEND CMAKE_C_STANDARD_LIBRARIES " -lstdc++")
    if(NIMBRA_SANITIZE MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=undefined -fno-sanitize=vptr)
        add_link_options(-fno-sanitize=vptr)
    endif()
else()
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,--no-undefined>)
endif()
