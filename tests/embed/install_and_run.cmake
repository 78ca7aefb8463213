# After the host's build: install the host into PREFIX with its own `cmake --install`,
# check what of zr came along (a shared zr's runtime and licence, nothing for development;
# a static zr, nothing at all) and run the installed program.
#   HOST_BUILD  the host's build tree
#   PREFIX      where to install it
#   SHARED      whether zr is a shared library
cmake_minimum_required(VERSION 3.22)

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

run(${HOST_BUILD}/host)
file(REMOVE_RECURSE ${PREFIX})
run(${CMAKE_COMMAND} --install ${HOST_BUILD} --prefix ${PREFIX})

file(GLOB_RECURSE installed RELATIVE ${PREFIX} LIST_DIRECTORIES false ${PREFIX}/*)
set(runtime)
set(other)
foreach(f IN LISTS installed)
  if(f MATCHES "^lib[^/]*/libzr\\.so\\.[0-9.]+$")
    list(APPEND runtime ${f})
  elseif(NOT f MATCHES "^bin/host$" AND NOT f STREQUAL "share/doc/zr/LICENSE")
    list(APPEND other ${f})
  endif()
endforeach()
if(other)
  message(FATAL_ERROR "the host's install took more of zr than its runtime: ${other}")
endif()
if(SHARED AND NOT runtime)
  message(FATAL_ERROR "the host's install left out the shared zr: ${installed}")
endif()
if(NOT SHARED AND (runtime OR "share/doc/zr/LICENSE" IN_LIST installed))
  message(FATAL_ERROR "a static zr installed files of its own: ${installed}")
endif()
if(SHARED AND NOT "share/doc/zr/LICENSE" IN_LIST installed)
  message(FATAL_ERROR "the shared zr came without its licence: ${installed}")
endif()

# The installed program runs from its prefix, with no help from the environment.
run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${PREFIX}/bin/host)
