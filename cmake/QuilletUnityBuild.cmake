# quillet_unity_build(target) compiles sixteen sources of a target as one, so that what they include is read once: a build
# from nothing takes less than half the time.
# A name in the unnamed namespace of one of them is one of the others', too, or hides a function that others call: whoever
# makes one chooses one that the target has not. "scripts/test asan windows" tells. These sources stay by themselves:
set(QUILLET_ALONE
  ConsoleWindows Http Remote RemoteHost) # g++: a class that others know has a member of their own
function(quillet_unity_build target)
  get_target_property(type ${target} TYPE)
  if(NOT QUILLET_UNITY_BUILD OR type STREQUAL INTERFACE_LIBRARY) # the system's own platform
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 16)
  get_target_property(folder ${target} SOURCE_DIR)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    if(name IN_LIST QUILLET_ALONE)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder})
      set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
endfunction()
