# The same sources make the same bytes, wherever and whenever they are compiled: no folder of the build machine gets into
# what is built, and no time. For every build that is not for debugging, which wants to find the sources.
# scripts/reproducible builds twice and compares; tests/package/reproducible.py does so with a small part.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON) # or what is installed would have room for the path of the build tree
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package-times.cmake)
if(MSVC)
  add_link_options(/Brepro)
  return()
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  return()
endif()
# Of two that fit the last is taken.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
add_compile_options(-Wdate-time)
if(MINGW)
  add_link_options(LINKER:--no-insert-timestamp)
endif()
