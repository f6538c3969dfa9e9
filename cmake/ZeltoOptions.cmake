# Compiler options that every target of the project shares: INTERFACE target Zelto::options.
add_library(zelto_options INTERFACE)
add_library(Zelto::options ALIAS zelto_options)

# The engine's arithmetic is what the source says: no contraction to fused operations.
target_compile_options(zelto_options INTERFACE
    -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
if(ZELTO_WERROR)
    target_compile_options(zelto_options INTERFACE -Werror)
endif()
if(ZELTO_SANITIZE)
    target_compile_options(zelto_options INTERFACE
        -fsanitize=${ZELTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zelto_options INTERFACE -fsanitize=${ZELTO_SANITIZE})
endif()

# GDAL looks for its own support files in the folder `data` beside the running program.
execute_process(COMMAND gdal-config --datadir
    OUTPUT_VARIABLE ZELTO_GDAL_DATADIR OUTPUT_STRIP_TRAILING_WHITESPACE)
file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
file(CREATE_LINK ${ZELTO_GDAL_DATADIR} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/data SYMBOLIC)
