# Installs the build BUILD into a fresh prefix below FOLDER, builds the example host against it
# through ROAD (FindPackage or PkgConfig) and runs the host on the sample scene.

cmake_minimum_required(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nfailed (${result}):\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_output expected)
    if(NOT output MATCHES "${expected}")
        message(FATAL_ERROR "expected ${expected} in:\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
set(prefix ${FOLDER}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --config "${CONFIG}")

# What is not part of the interface stays at home; what is can be had in one line.
file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*)
file(READ ${prefix}/include/zelto/Zelto.h all_headers)
list(REMOVE_ITEM headers zelto/Zelto.h)
foreach(header IN LISTS headers)
    string(FIND "${all_headers}" "#include \"${header}\"\n" at)
    if(header MATCHES "/internal/")
        message(FATAL_ERROR "the internal header ${header} is installed")
    elseif(at EQUAL -1)
        message(FATAL_ERROR "zelto/Zelto.h does not include ${header}")
    endif()
endforeach()

set(flags "")
if(SANITIZE)
    set(flags -fsanitize=${SANITIZE})
endif()
set(example ${SOURCE}/examples/minimal_host)
if(ROAD STREQUAL "FindPackage")
    run(${CMAKE_COMMAND} -S ${example} -B ${FOLDER}/build -G Ninja
        -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_STANDARD=17
        "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror ${flags}")
    run(${CMAKE_COMMAND} --build ${FOLDER}/build)
    set(host ${FOLDER}/build/minimal_host)
else()
    set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
    run(pkg-config --cflags --libs zelto)
    string(STRIP "${output}" output)
    separate_arguments(options UNIX_COMMAND "${output}")
    set(host ${FOLDER}/minimal_host)
    run(${COMPILER} -std=c++17 -Wall -Wextra -Werror ${flags} ${example}/main.cpp -o ${host}
        ${options} -Wl,-rpath,${prefix}/${LIBDIR})
endif()

run(${host} ${SOURCE}/samples/L7_ETMs.tif)
expect_output("L7_ETMs.tif: 349 x 352 pixels, 6 bands\n")
expect_output("extent 288776.25 9120760.75 298722.75 9110728.75\n")

# The picture has the scene's own size: it is no wider than the host's limit.
run(${host} ${SOURCE}/samples/L7_ETMs.tif ${FOLDER}/picture.ppm)
file(READ ${FOLDER}/picture.ppm start LIMIT 15)
file(SIZE ${FOLDER}/picture.ppm size)
math(EXPR expected "15 + 349 * 352 * 3")
if(NOT start STREQUAL "P6\n349 352\n255\n" OR NOT size EQUAL expected)
    message(FATAL_ERROR "the picture has ${size} bytes and starts with ${start}")
endif()
