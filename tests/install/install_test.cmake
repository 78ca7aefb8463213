# Driven by ctest in script mode:
#   STEP=install   installs the zr build tree BUILD_DIR into WORK/stage, then moves the
#                  installed tree to WORK/prefix, so the consumers below prove that the
#                  package and zr.pc do not depend on where zr was installed;
#   STEP=config    builds and runs the consumer with find_package(zr CONFIG);
#   STEP=pkg-config  the same through pkg-config (skipped when it is missing).
# CXX_FLAGS and LINKER_FLAGS are the zr build's own, so that a sanitizer build links.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " cmd "${ARGN}")
    message(FATAL_ERROR "failed (${rc}): ${cmd}\n${out}")
  endif()
  message(STATUS "${out}")
endfunction()

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
  file(GLOB_RECURSE so RELATIVE ${prefix} ${prefix}/*/libzr.so.${SOVERSION})
  foreach(f zr/zr.h zr/core/core.h zr/arrays/simple_array_impl.h zr/graph/graph.h)
    if(NOT EXISTS ${prefix}/include/${f})
      message(FATAL_ERROR "include/${f} was not installed")
    endif()
  endforeach()
  file(GLOB_RECURSE sources ${prefix}/*.cpp)
  if(NOT pc OR NOT cfg OR NOT so OR sources)
    message(FATAL_ERROR "installed tree is incomplete or has sources: pc='${pc}' "
      "config='${cfg}' library='${so}' sources='${sources}'")
  endif()
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
  -G ${GENERATOR} -DCMAKE_BUILD_TYPE=${CONFIG} -DZR_FIND=${STEP}
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX}
  "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")
run(${CMAKE_COMMAND} --build ${build} ${config_opt})
if(STEP STREQUAL "config")
  # The imported target gives the program a run path to the installed library.
  run(${build}/consumer)
else()
  # pkg-config gives none: the loader is told where the library is.
  file(GLOB libdir LIST_DIRECTORIES true ${prefix}/lib ${prefix}/lib64 ${prefix}/lib/*-linux-gnu)
  string(REPLACE ";" ":" libdir "${libdir}")
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${build}/consumer)
endif()
