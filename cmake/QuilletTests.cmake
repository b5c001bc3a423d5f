# quillet_add_test(name SOURCES ... LIBRARIES ... [THREADED])
#
# One GoogleTest program per subsystem. Natively every test case is a CTest entry of its own, so that a
# failure is named in the summary. Under Wine, where a process start costs more than most cases, the
# program is one entry; it prints its own list. THREADED marks the cases that ThreadSanitizer runs.
if(WIN32)
  # Debian ships GoogleTest's sources; there is no package of it built for mingw-w64.
  set(gtest_force_shared_crt OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  # Newer sources define these names themselves.
  foreach(library IN ITEMS gmock gtest)
    if(NOT TARGET GTest::${library})
      add_library(GTest::${library} ALIAS ${library})
    endif()
  endforeach()
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

# Everything that ThreadSanitizer needs, and no more.
add_custom_target(threaded_tests)

function(quillet_add_test name)
  cmake_parse_arguments(arg "THREADED" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  # A test runs once: optimising it, above all with sanitizers in it, takes longer than it can ever save.
  target_compile_options(${name} PRIVATE -O0)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest Quillet::warnings)
  if(arg_THREADED)
    set(label threaded)
    add_dependencies(threaded_tests ${name})
  else()
    set(label single)
  endif()
  if(WIN32)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS ${label})
  else()
    gtest_discover_tests(${name} TEST_PREFIX ${name}: PROPERTIES LABELS ${label} DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
