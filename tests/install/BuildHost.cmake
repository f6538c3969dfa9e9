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
# Builds an example and sets `host` to its program.
function(build_example name)
    set(example ${SOURCE}/examples/${name})
    if(ROAD STREQUAL "FindPackage")
        run(${CMAKE_COMMAND} -S ${example} -B ${FOLDER}/${name} -G Ninja
            -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_STANDARD=17
            "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror ${flags}")
        run(${CMAKE_COMMAND} --build ${FOLDER}/${name})
        set(host ${FOLDER}/${name}/${name} PARENT_SCOPE)
    else()
        set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
        run(pkg-config --cflags --libs zelto)
        string(STRIP "${output}" output)
        separate_arguments(options UNIX_COMMAND "${output}")
        run(${COMPILER} -std=c++17 -Wall -Wextra -Werror ${flags} ${example}/main.cpp
            -o ${FOLDER}/host_${name} ${options} -Wl,-rpath,${prefix}/${LIBDIR})
        set(host ${FOLDER}/host_${name} PARENT_SCOPE)
    endif()
endfunction()

build_example(minimal_host)
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

# The other one pans, zooms and shows an area. The whole picture shows between the percentiles of
# band 4, which the command line tells as well.
build_example(view_host)
file(MAKE_DIRECTORY ${FOLDER}/views)
run(${host} ${SOURCE}/samples/L7_ETMs.tif ${FOLDER}/views)
set(views "${output}")
math(EXPR expected "15 + 320 * 240 * 3")
foreach(view IN ITEMS whole zoomed dragged area)
    file(SIZE ${FOLDER}/views/${view}.ppm size)
    if(NOT size EQUAL expected)
        message(FATAL_ERROR "the picture ${view} has ${size} bytes")
    endif()
    file(SHA256 ${FOLDER}/views/${view}.ppm hash)
    list(APPEND hashes ${hash})
endforeach()
list(REMOVE_DUPLICATES hashes)
list(LENGTH hashes different)
if(NOT different EQUAL 4)
    message(FATAL_ERROR "pictures of different views are the same")
endif()
run(${prefix}/bin/zelto stats --bands 4 --percentiles 2,98 --csv ${SOURCE}/samples/L7_ETMs.tif)
string(REGEX MATCH "([0-9.]+),([0-9.]+)\n$" percentiles "${output}")
set(output "${views}")
expect_output("band 4: ${CMAKE_MATCH_1} to ${CMAKE_MATCH_2}\n")
expect_output("band 6: [0-9]+ pixels, mean [0-9.]+\n")

# What the host guide and the README show. The upper right quarter holds 175 of the columns' middles
# and 176 of the rows'.
build_example(guide_host)
file(MAKE_DIRECTORY ${FOLDER}/guide)
run(${host} ${SOURCE}/samples/L7_ETMs.tif ${FOLDER}/guide)
expect_output("^mean of band 4: 59.2354\n30800 81.192 13.998\n")
file(READ ${SOURCE}/docs/host-guide.md page)
string(FIND "${page}" "```text\n${output}```\n" at)
if(at EQUAL -1)
    message(FATAL_ERROR "docs/host-guide.md does not show what guide_host prints:\n${output}")
endif()
if(NOT EXISTS ${FOLDER}/guide/picture.ppm OR NOT EXISTS ${FOLDER}/guide/look.json)
    message(FATAL_ERROR "the host of the guide has left out a file")
endif()
