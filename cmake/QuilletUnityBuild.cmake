# quillet_unity_build(target) compiles eight sources of a target as one, so that what they include is read once: a build
# from nothing takes half the time.
# These sources stay by themselves: a name in their unnamed namespace is one of another source's, too, or hides a function
# that others call. Whoever makes one more adds the source here; "scripts/test asan windows" tells.
set(QUILLET_ALONE SafeArray TeamMembers TeamWizard VLANTexts
  ClassMerge MofWriter ObjectPath Values VariantReading WqlLexer WqlMatch
  LinkSecurity NetworkBootProvider SettingProvider VlanModel
  Adapter Application ConsoleWindows Diag Help ISCSI Power Vlan
  Http Remote # g++: a class that others know has a member of their own
  # tests
  DiagnosticsTest InterruptedChangesTest LinkSecurityOperations LumDebugLinesTest NamesTest NetworkBootTest NullCopyTest
  ObjectPathTest PortCallCountsTest PowerTest PropertySettersTest QuestionsTest ReadingOperations ServicesTest
  SettingChecksTest SettingNamesTest SettingWritingTest TeamCallCountsTest TeamOperations TeamTest VLANOperations VlanCallCountsTest
  VlanTest Win32Test WritingOperations)
function(quillet_unity_build target)
  get_target_property(type ${target} TYPE)
  if(NOT QUILLET_UNITY_BUILD OR type STREQUAL INTERFACE_LIBRARY) # the system's own platform
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
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
