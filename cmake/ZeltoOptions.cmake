# Compiler options that the targets of the project share: INTERFACE targets Zelto::options for the
# library and the benchmarks, Zelto::program_options for the programs that only use the library,
# Zelto::test_options for the tests. Those are many and heavy on templates: quick to build matters
# more there than speed.

add_library(zelto_common_options INTERFACE)
# The engine's arithmetic is what the source says: no contraction to fused operations.
target_compile_options(zelto_common_options INTERFACE
    -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
if(ZELTO_WERROR)
    target_compile_options(zelto_common_options INTERFACE -Werror)
endif()
if(ZELTO_SANITIZE)
    target_compile_options(zelto_common_options INTERFACE
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zelto_common_options INTERFACE -fsanitize=${ZELTO_SANITIZE})
endif()
if(ZELTO_FUZZ)
    # The fuzzer steers by the branches that its inputs reach, in whatever is compiled here.
    target_compile_options(zelto_common_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

add_library(zelto_options INTERFACE)
add_library(Zelto::options ALIAS zelto_options)
target_link_libraries(zelto_options INTERFACE zelto_common_options)

add_library(zelto_program_options INTERFACE)
add_library(Zelto::program_options ALIAS zelto_program_options)
target_link_libraries(zelto_program_options INTERFACE zelto_common_options)
target_compile_options(zelto_program_options INTERFACE $<$<CONFIG:Release>:-O1>)

add_library(zelto_test_options INTERFACE)
add_library(Zelto::test_options ALIAS zelto_test_options)
target_link_libraries(zelto_test_options INTERFACE zelto_common_options)
target_compile_options(zelto_test_options INTERFACE $<$<CONFIG:Release>:-Og>)

if(ZELTO_SANITIZE)
    target_compile_options(zelto_options INTERFACE -fsanitize=${ZELTO_SANITIZE})
    # Programs are watched for errors of memory and threads; undefined behaviour is looked for in
    # the engine, where the arithmetic is.
    string(REPLACE ",undefined" "" ZELTO_SANITIZE_PROGRAMS "${ZELTO_SANITIZE}")
    foreach(options IN ITEMS zelto_program_options zelto_test_options)
        target_compile_options(${options} INTERFACE -O0 -fsanitize=${ZELTO_SANITIZE_PROGRAMS})
    endforeach()
endif()

if(ZELTO_COVERAGE)
    # The library alone, as its source says it; what tests it stays as fast as it is.
    target_compile_options(zelto_options INTERFACE -O0 --coverage -fprofile-update=atomic)
    target_link_options(zelto_common_options INTERFACE --coverage)
endif()

# GDAL looks for its own support files in the folder `data` beside the running program.
execute_process(COMMAND gdal-config --datadir
    OUTPUT_VARIABLE ZELTO_GDAL_DATADIR OUTPUT_STRIP_TRAILING_WHITESPACE)
file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
file(CREATE_LINK ${ZELTO_GDAL_DATADIR} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/data SYMBOLIC)
