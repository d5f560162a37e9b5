# Installs BUILD into an empty prefix under WORK, moves the prefix, and builds and runs EXAMPLE
# against it: through the CMake package and through pkg-config. COMPILER: of the build.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_example)
    set(expected "LSP 0: 0 1\nbackup: 0 3 2 1\n\
No path from node 0 to node 2 has room for 600 at level 0; 400 would fit.\n\
link 0 carries 600 of 1000\n")
    run(${ARGN})
    if(NOT output STREQUAL expected)
        message(FATAL_ERROR "the example printed\n${output}instead of\n${expected}")
    endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
set(prefix ${WORK}/moved)
file(RENAME ${WORK}/first ${prefix})

run(${CMAKE_COMMAND} -S ${EXAMPLE} -B ${WORK}/example -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK}/example)
expect_example(${WORK}/example/first)

file(GLOB_RECURSE pc ${prefix}/*/tarnex.pc)
cmake_path(GET pc PARENT_PATH pc_dir)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(pkg-config --cflags --libs tarnex)
string(STRIP "${output}" flags)
separate_arguments(flags)
run(${COMPILER} ${EXAMPLE}/first.cpp -o ${WORK}/first ${flags})
cmake_path(GET pc_dir PARENT_PATH library_dir)
set(ENV{LD_LIBRARY_PATH} ${library_dir})
expect_example(${WORK}/first)

# The library shows its interface and nothing of what is behind it.
run(nm --dynamic --defined-only --demangle --format=just-symbols ${library_dir}/libtarnex-engine.so)
string(STRIP "${output}" symbols)
string(REPLACE "\n" ";" symbols "${symbols}")
list(FILTER symbols EXCLUDE REGEX
    "^tarnex::(Engine::(~)?[A-Za-z]+|Weights::of|textOf)[([]|^tarnex::Engine::operator=|^(typeinfo|typeinfo name|vtable) for tarnex::WrongUse$")
if(symbols)
    message(FATAL_ERROR "symbols that nobody should see: ${symbols}")
endif()
foreach(file IN ITEMS share/java/tarnex.jar lib/jni/libtarnex.so)
    if(NOT EXISTS ${prefix}/${file})
        message(FATAL_ERROR "${file} was not installed")
    endif()
endforeach()
