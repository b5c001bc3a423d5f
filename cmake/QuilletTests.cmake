# quillet_add_test(name SOURCES ... LIBRARIES ... [THREADED])
#
# One GoogleTest program per subsystem, and one CTest entry per program: a process for each case would spend most
# of its time on making the simulator's machine again. The program lists its cases, and CTest shows the output
# of one that fails. THREADED marks the programs that ThreadSanitizer runs.
if(MINGW)
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

# Everything that ThreadSanitizer needs, and no more.
add_custom_target(threaded_tests)

# The tests that sanitizers would only slow down: documents, packages, what an optimiser makes of the records, programs
# that are run as their users run them. They are there in builds without sanitizers only.
add_custom_target(plain_tests)
if(CMAKE_CXX_FLAGS MATCHES "sanitize")
  set(QUILLET_SANITIZED ON)
endif()

# quillet_own_prefix(test...): under Wine four tests run at a time, each in a prefix, and so with a registry, of its own
# (scripts/wine-run). ctest lends the prefixes.
function(quillet_own_prefix)
  if(MINGW)
    set_tests_properties(${ARGN} PROPERTIES RESOURCE_GROUPS prefixes:1)
  endif()
endfunction()

# quillet_plain_tests(test... [TARGETS target...]) marks tests as such, and says what they need.
function(quillet_plain_tests)
  cmake_parse_arguments(arg "" "" "TARGETS" ${ARGN})
  set_tests_properties(${arg_UNPARSED_ARGUMENTS} PROPERTIES LABELS plain)
  quillet_own_prefix(${arg_UNPARSED_ARGUMENTS})
  if(arg_TARGETS)
    add_dependencies(plain_tests ${arg_TARGETS})
  endif()
endfunction()

# GoogleTest's headers are most of what the compiler reads of a test; they are read once for all programs.
# Something to be compiled is needed for that, with the very options of a test.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/TestHeaders.cpp CONTENT "int main() {}\n" @ONLY)
add_executable(quillet_test_headers EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/TestHeaders.cpp)
# A test runs once: optimising it, above all with sanitizers in it, takes longer than it can ever save.
if(MSVC)
  set(QUILLET_UNOPTIMISED /Od)
else()
  set(QUILLET_UNOPTIMISED -O0 -U_FORTIFY_SOURCE)
endif()
if(CMAKE_CXX_FLAGS MATCHES "sanitize=address")
  # The product is asked at each access whether the object is null, aligned, large enough and of its type. In the tests' own
  # sources that is a fifth of the compiler's time; there it is enough that a wrong access stops the test.
  list(APPEND QUILLET_UNOPTIMISED -fno-sanitize=null,alignment,object-size,vptr)
endif()
target_compile_options(quillet_test_headers PRIVATE ${QUILLET_UNOPTIMISED})
target_link_libraries(quillet_test_headers PRIVATE GTest::gmock GTest::gtest Quillet::platform Quillet::warnings)
target_precompile_headers(quillet_test_headers PRIVATE
  <windows.h> <wbemidl.h> <comdef.h> <atlbase.h> <filesystem> <functional> <map> <variant> <gmock/gmock.h> <gtest/gtest.h>)

# quillet_archives(result target...) lists the product's static libraries that the targets stand for.
function(quillet_archives result)
  set(found)
  foreach(target IN LISTS ARGN)
    if(NOT TARGET ${target})
      continue()
    endif()
    get_target_property(type ${target} TYPE)
    get_target_property(folder ${target} SOURCE_DIR)
    get_target_property(used ${target} INTERFACE_LINK_LIBRARIES)
    cmake_path(IS_PREFIX PROJECT_SOURCE_DIR ${folder} ours)
    if(type STREQUAL STATIC_LIBRARY AND ours AND NOT folder MATCHES "/tests/")
      list(APPEND found $<TARGET_FILE:${target}>)
    endif()
    if(used)
      quillet_archives(below ${used})
      list(APPEND found ${below})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES found)
  set(${result} ${found} PARENT_SCOPE)
endfunction()

function(quillet_add_test name)
  cmake_parse_arguments(arg "THREADED" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_compile_options(${name} PRIVATE ${QUILLET_UNOPTIMISED})
  target_precompile_headers(${name} REUSE_FROM quillet_test_headers)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest Quillet::warnings)
  quillet_unity_build(${name})
  if(MINGW AND QUILLET_UNITY_BUILD)
    set_target_properties(${name} PROPERTIES CXX_LINKER_LAUNCHER ${PROJECT_SOURCE_DIR}/cmake/link-with-lld)
  endif()
  if(QUILLET_UNITY_BUILD AND CMAKE_CXX_FLAGS MATCHES "sanitize=address")
    # Of an inline function a program keeps the copy that the linker sees first. Those of the simulator are optimised, and
    # a test that runs long takes half the time with those.
    quillet_archives(archives ${arg_LIBRARIES})
    foreach(optimised IN ITEMS $<TARGET_FILE:quillet_simulator> $<TARGET_FILE:quillet_wmi>)
      if(optimised IN_LIST archives)
        list(REMOVE_ITEM archives ${optimised})
        list(PREPEND archives ${optimised})
      endif()
    endforeach()
    target_link_options(${name} PRIVATE LINKER:--whole-archive ${archives} LINKER:--no-whole-archive)
  endif()
  if(arg_THREADED)
    set(label threaded)
    add_dependencies(threaded_tests ${name})
  else()
    set(label single)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 1800)
  quillet_own_prefix(${name})
endfunction()
