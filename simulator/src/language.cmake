# The language layer of the simulator: values, object paths, WQL, MOF and the repository. No COM in it.
add_library(quillet_simulator_language STATIC
  ../wmi/language/MofCompiler.cpp
  ../wmi/language/MofLexer.cpp
  ../wmi/language/MofQualifiers.cpp
  ../wmi/language/MofWriter.cpp
  ../wmi/language/WqlMatch.cpp
  ../wmi/language/WqlParser.cpp
  ../wmi/model/ClassMerge.cpp
  ../wmi/model/Model.cpp
  ../wmi/model/ObjectPath.cpp
  ../wmi/model/Text.cpp
  src/Repository.cpp
  src/RepositoryCopy.cpp
  src/RepositoryState.cpp)
target_include_directories(quillet_simulator_language
  PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/wmi/include>
  PRIVATE ${PROJECT_SOURCE_DIR}/wmi)
target_link_libraries(quillet_simulator_language PUBLIC Quillet::platform PRIVATE $<BUILD_INTERFACE:Quillet::warnings>)
