# Driven by ctest in script mode:
#   STEP=install   installs the zr build tree BUILD_DIR into WORK/stage, then moves the
#                  installed tree to WORK/prefix, so the consumers below prove that the
#                  package and zr.pc do not depend on where zr was installed;
#   STEP=config    builds and runs the consumer with find_package(zr CONFIG);
#   STEP=pkg-config  the same through pkg-config (skipped when it is missing);
#   STEP=version   the package accepts a request for its own series (VERSION's
#                  MAJOR.MINOR) and refuses one for the series before it.
# SHARED says whether zr is a shared library (SOVERSION: its soname's version) or a static
# archive. CXX_FLAGS and LINKER_FLAGS are the zr build's own, so that a sanitizer build
# links.
cmake_minimum_required(VERSION 3.22)

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

set(prefix ${WORK}/prefix)
set(config_opt)
if(CONFIG)
  set(config_opt --config ${CONFIG})
endif()

if(STEP STREQUAL "install")
  file(REMOVE_RECURSE ${WORK})
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK}/stage ${config_opt})
  file(RENAME ${WORK}/stage ${prefix})
  # What users expect to find; the library's own directory is the one GNUInstallDirs chose.
  file(GLOB_RECURSE pc RELATIVE ${prefix} ${prefix}/*/pkgconfig/zr.pc)
  file(GLOB_RECURSE cfg RELATIVE ${prefix} ${prefix}/*/cmake/zr/zrConfigVersion.cmake)
  if(SHARED)
    file(GLOB_RECURSE lib RELATIVE ${prefix} ${prefix}/*/libzr.so.${SOVERSION})
    file(GLOB_RECURSE other_kind RELATIVE ${prefix} ${prefix}/*/libzr.a)
  else()
    file(GLOB_RECURSE lib RELATIVE ${prefix} ${prefix}/*/libzr.a)
    file(GLOB_RECURSE other_kind RELATIVE ${prefix} ${prefix}/*/libzr.so*)
  endif()
  if(other_kind)
    message(FATAL_ERROR "SHARED is ${SHARED}, yet the install has ${other_kind}")
  endif()
  if(NOT EXISTS ${prefix}/share/doc/zr/LICENSE)
    message(FATAL_ERROR "share/doc/zr/LICENSE was not installed")
  endif()
  foreach(f zr/zr.h zr/core/core.h zr/arrays/simple_array_impl.h zr/graph/graph.h)
    if(NOT EXISTS ${prefix}/include/${f})
      message(FATAL_ERROR "include/${f} was not installed")
    endif()
  endforeach()
  file(GLOB_RECURSE sources ${prefix}/*.cpp)
  if(NOT pc OR NOT cfg OR NOT lib OR sources)
    message(FATAL_ERROR "installed tree is incomplete or has sources: pc='${pc}' "
      "config='${cfg}' library='${lib}' sources='${sources}'")
  endif()
  return()
endif()

if(STEP STREQUAL "version")
  # Under 0.x only the same minor version is compatible, from 1.0 the same major one.
  string(REPLACE "." ";" v "${VERSION}")
  list(GET v 0 major)
  list(GET v 1 minor)
  set(accepted ${major}.${minor})
  if(major EQUAL 0 AND minor GREATER 0)
    math(EXPR before "${minor} - 1")
    set(refused 0.${before}.9)
  elseif(major GREATER 0)
    math(EXPR before "${major} - 1")
    set(refused ${before}.99)
  else()
    set(refused)  # 0.0.x has no series before it
  endif()
  foreach(request ${accepted} ${refused})
    set(build ${WORK}/version-${request})
    file(REMOVE_RECURSE ${build})
    execute_process(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/version -B ${build}
        -G ${GENERATOR} -DZR_REQUEST=${request} -DCMAKE_PREFIX_PATH=${prefix}
      RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    string(REGEX REPLACE "[ \n]+" " " flat "${out}")  # CMake wraps its messages
    if(request STREQUAL accepted AND NOT rc EQUAL 0)
      message(FATAL_ERROR "find_package(zr ${request}) failed with zr ${VERSION}:\n${out}")
    elseif(NOT request STREQUAL accepted AND
           (rc EQUAL 0 OR NOT flat MATCHES "compatible with requested version \"${request}\""))
      message(FATAL_ERROR "find_package(zr ${request}) did not refuse zr ${VERSION}:\n${out}")
    endif()
    if(request STREQUAL accepted)
      message(STATUS "find_package(zr ${request}) accepts zr ${VERSION}")
    else()
      message(STATUS "find_package(zr ${request}) refuses zr ${VERSION}")
    endif()
  endforeach()
  return()
endif()

set(build ${WORK}/consumer-${STEP})
file(REMOVE_RECURSE ${build})
set(env)
if(STEP STREQUAL "pkg-config")
  find_program(PKG_CONFIG_EXECUTABLE pkg-config)
  if(NOT PKG_CONFIG_EXECUTABLE)
    message("ZR_SKIP: pkg-config is not installed")
    return()
  endif()
  file(GLOB pcdir LIST_DIRECTORIES true ${prefix}/*/pkgconfig ${prefix}/*/*/pkgconfig)
  set(env ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pcdir})
endif()
run(${env} ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${build}
  -G ${GENERATOR} -DCMAKE_BUILD_TYPE=${CONFIG} -DZR_FIND=${STEP} -DZR_EXPECT_SHARED=${SHARED}
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX}
  "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")
run(${CMAKE_COMMAND} --build ${build} ${config_opt})
if(STEP STREQUAL "config" OR NOT SHARED)
  # The imported target gives the program a run path to the installed library; a static
  # zr is inside the program.
  run(${build}/consumer)
else()
  # pkg-config gives none: the loader is told where the library is.
  file(GLOB libdir LIST_DIRECTORIES true ${prefix}/lib ${prefix}/lib64 ${prefix}/lib/*-linux-gnu)
  string(REPLACE ";" ":" libdir "${libdir}")
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${build}/consumer)
endif()
