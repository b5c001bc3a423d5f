# Compiles eight sources as one, so that what they include is read once: a build from nothing takes half the time.
# These sources stay by themselves: a name in their unnamed namespace is one of another source's, too, or hides a function
# that others call. Whoever makes one more adds the source here; "scripts/test demo" tells.
set(alone SafeArray TeamMembers TeamWizard VLANTexts
  ClassMerge MofWriter ObjectPath Values VariantReading WqlLexer WqlMatch
  LinkSecurity NetworkBootProvider SettingProvider VlanModel
  Adapter Application ConsoleWindows Diag Help ISCSI Power Vlan)
foreach(target IN ITEMS quillet_platform quillet_records quillet_objects quillet_wmi quillet_simulator quilletctl_core)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL INTERFACE_LIBRARY) # the system's own platform
    continue()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
  get_target_property(folder ${target} SOURCE_DIR)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    if(name IN_LIST alone)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder})
      set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
endforeach()
# Every start of the program compiles the schema, and unoptimised that takes half a second.
if(CMAKE_CXX_FLAGS MATCHES "-O0")
  foreach(target IN ITEMS quillet_wmi quillet_simulator)
    target_compile_options(${target} PRIVATE -O1)
  endforeach()
endif()
