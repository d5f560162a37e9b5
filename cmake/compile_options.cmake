# One interface target that every C++ target of the project links: warnings, reproducible
# floating-point arithmetic and, on request, sanitizers.
add_library(tarnex_options INTERFACE)
target_compile_options(tarnex_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # Results depend on nothing but the inputs: no fused operations, no reordering.
    -ffp-contract=off)
target_compile_definitions(tarnex_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(TARNEX_SANITIZE)
    target_compile_options(tarnex_options INTERFACE
        -fsanitize=${TARNEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarnex_options INTERFACE -fsanitize=${TARNEX_SANITIZE})
endif()

# precompile(TARGET HEADER...): headers that most sources of a target include. For builds that are there
# to be tested; in others a source that does not include what it needs is noticed.
option(TARNEX_PRECOMPILE "Precompile headers of libraries" OFF)
function(precompile target)
    if(TARNEX_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()
