# Installs the build into a folder of its own, builds the project beside this file against that, and
# runs what was built.
cmake_policy(VERSION 3.25)

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE text ERROR_VARIABLE text)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${what}: ${status}\n${text}")
    endif()
    message(STATUS "${what}: done")
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
set(prefix ${SCRATCH}/prefix)
set(flags "")
set(link_flags "")
if(SANITIZE)
    set(flags "-fsanitize=${SANITIZE}")
    # The libraries need the sanitizers' runtime for C++, in programs of C as well.
    set(link_flags "-fsanitize-link-c++-runtime -lstdc++")
endif()

run("install" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run("configure" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE} -B ${SCRATCH}/build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${C_COMPILER}
    -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_C_FLAGS=${flags} -DCMAKE_CXX_FLAGS=${flags}
    -DCMAKE_EXE_LINKER_FLAGS=${link_flags})
run("build" ${CMAKE_COMMAND} --build ${SCRATCH}/build)
file(GLOB programs ${SCRATCH}/build/consumer_*)
list(LENGTH programs count)
if(count LESS 5)
    message(FATAL_ERROR "only ${count} programs were built")
endif()
foreach(program ${programs})
    run("${program}" ${program})
endforeach()
