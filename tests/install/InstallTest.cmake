# Installs the build into a fresh prefix, checks what lies there, builds the outside program of
# example/ against it twice (through the CMake package and through pkg-config) and runs both on
# a volume that the installed brindle tool makes. Run as
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DSOURCE_DIR=... -DREADME=... -DCXX=... -DGENERATOR=...
#         -DLIBDIR=... -DSANITIZE=ON|OFF -P InstallTest.cmake
cmake_minimum_required(VERSION 3.25)

set(prefix ${WORK_DIR}/prefix)
set(libdir ${prefix}/${LIBDIR})
set(flags "")
if(SANITIZE)
  set(flags -fsanitize=address,undefined)
endif()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(expect_match text pattern)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "'${text}' does not match '${pattern}'")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# The libraries carry their SONAME, the headers lie in one folder, the packages are there.
foreach(file ${libdir}/libBrindleCore.so ${libdir}/libBrindleImaging.so ${prefix}/bin/brindle
        ${prefix}/include/BrindleImaging/BrindleImaging.h ${prefix}/include/BrindleImaging/BrindleCore.h
        ${prefix}/include/BrindleImaging/XVolume.h ${libdir}/cmake/BrindleImaging/BrindleImagingConfig.cmake
        ${libdir}/pkgconfig/BrindleImaging.pc ${libdir}/pkgconfig/BrindleCore.pc)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()
run(readelf -d ${libdir}/libBrindleImaging.so)
expect_match("${out}" "Library soname: \\[libBrindleImaging\\.so\\.[0-9]+\\.[0-9]+\\]")
expect_match("${out}" "NEEDED.*\\[libBrindleCore\\.so\\.[0-9]+\\.[0-9]+\\]")

# The README shows the example as it is built here.
file(READ ${SOURCE_DIR}/example/volume_example.cpp example)
file(READ ${README} readme)
string(FIND "${readme}" "${example}" found)
if(found EQUAL -1)
  message(FATAL_ERROR "README.md does not show example/volume_example.cpp as it stands")
endif()

# Built through the CMake package...
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/example -B ${WORK_DIR}/with-cmake -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${flags}" -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/with-cmake)
# ... and through pkg-config, with the compiler alone.
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${libdir}/pkgconfig pkg-config --cflags --libs BrindleImaging)
separate_arguments(pkg_flags UNIX_COMMAND "${out}")
run(${CXX} -std=c++20 ${flags} ${SOURCE_DIR}/example/volume_example.cpp ${pkg_flags} -o ${WORK_DIR}/with-pkg-config)

# The installed tool makes the input; both programs invert it alike, and the tool reads their
# output back with the range that they told.
run(${prefix}/bin/brindle --quiet sample ${WORK_DIR}/in.bvol)
run(${prefix}/bin/brindle info ${WORK_DIR}/in.bvol)
string(REGEX MATCH "minimum +([0-9]+)\nmaximum +([0-9]+)" range "${out}")
math(EXPR low "65535 - ${CMAKE_MATCH_2}")
math(EXPR high "65535 - ${CMAKE_MATCH_1}")
run(${WORK_DIR}/with-cmake/volume_example ${WORK_DIR}/in.bvol ${WORK_DIR}/out-cmake.bvol)
expect_match("${out}" "^256 x 256 x 32 voxels: min ${low}, max ${high}, mean [0-9]+\\.[0-9][0-9][0-9]\n$")
set(told "${out}")
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${WORK_DIR}/with-pkg-config ${WORK_DIR}/in.bvol
    ${WORK_DIR}/out-pkg-config.bvol)
if(NOT out STREQUAL told)
  message(FATAL_ERROR "the two builds differ: '${out}' against '${told}'")
endif()
run(${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/out-cmake.bvol ${WORK_DIR}/out-pkg-config.bvol)
run(${prefix}/bin/brindle info ${WORK_DIR}/out-cmake.bvol)
expect_match("${out}" "minimum +${low}\nmaximum +${high}\n")
file(REMOVE_RECURSE ${WORK_DIR})
