# The language layer of the simulator: values, object paths, WQL, MOF and the repository. No COM in it.
set(QUILLET_SIMULATOR_LANGUAGE_SOURCES
  src/ClassMerge.cpp
  src/Model.cpp
  src/MofCompiler.cpp
  src/MofLexer.cpp
  src/MofQualifiers.cpp
  src/MofWriter.cpp
  src/ObjectPath.cpp
  src/Repository.cpp
  src/RepositoryCopy.cpp
  src/RepositoryState.cpp
  src/Text.cpp
  src/WqlMatch.cpp
  src/WqlParser.cpp)
list(TRANSFORM QUILLET_SIMULATOR_LANGUAGE_SOURCES PREPEND ${CMAKE_CURRENT_LIST_DIR}/../)

add_library(quillet_simulator_language STATIC ${QUILLET_SIMULATOR_LANGUAGE_SOURCES})
target_include_directories(quillet_simulator_language PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_LIST_DIR}/../include>)
target_link_libraries(quillet_simulator_language PUBLIC Quillet::platform PRIVATE $<BUILD_INTERFACE:Quillet::warnings>)
