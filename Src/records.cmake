# The records and collections of the exported interface, and the header that says what is exported.
include(GenerateExportHeader)

set(QUILLET_RECORD_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/Records/Adapter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/Collections.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/DiagTest.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/LinkSecurity.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/Mappers.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/PerformanceProfile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/Setting.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/SettingEnum.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/SettingNames.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/Team.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/TeamTexts.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/Text.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Records/VLANTexts.cpp)

add_library(quillet_records OBJECT ${QUILLET_RECORD_SOURCES})
target_include_directories(quillet_records PUBLIC
  $<BUILD_INTERFACE:${CMAKE_CURRENT_LIST_DIR}/../include>
  $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>)
target_link_libraries(quillet_records PUBLIC Quillet::platform PRIVATE lum_common Quillet::warnings)

# Whoever compiles the exported classes into a library defines QUILLET_EXPORTS; whoever links them statically
# defines QUILLET_STATIC_DEFINE. A template has its code in each of its users, so that on Windows there is
# nothing of it to import; elsewhere it must be as visible as the classes that derive from it.
set_target_properties(quillet_records PROPERTIES DEFINE_SYMBOL QUILLET_EXPORTS)
target_compile_definitions(quillet_records PRIVATE QUILLET_EXPORTS)
if(WIN32)
  set(template_api "#define QUILLET_TEMPLATE_API\n")
else()
  set(template_api "#define QUILLET_TEMPLATE_API QUILLET_API\n")
endif()
generate_export_header(quillet_records
  BASE_NAME QUILLET
  EXPORT_MACRO_NAME QUILLET_API
  EXPORT_FILE_NAME ${CMAKE_BINARY_DIR}/include/quillet/Export.h
  STATIC_DEFINE QUILLET_STATIC_DEFINE
  CUSTOM_CONTENT_FROM_VARIABLE template_api)
