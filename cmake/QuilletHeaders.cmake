# CLI11 and nlohmann-json are headers only and serve every target, but a cross compiler does not search
# /usr/include, and must not: it holds the build host's own headers. Links to just these two stand in the build
# tree.
foreach(pair IN ITEMS quillet_cli11=CLI/CLI.hpp quillet_json=nlohmann/json.hpp)
  string(REPLACE "=" ";" pair ${pair})
  list(GET pair 0 target)
  list(GET pair 1 header)
  cmake_path(GET header PARENT_PATH folder)
  find_path(QUILLETCTL_${folder}_ROOT ${header} PATHS /usr/include /usr/local/include
    NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers/${target})
  file(CREATE_LINK ${QUILLETCTL_${folder}_ROOT}/${folder} ${PROJECT_BINARY_DIR}/headers/${target}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/headers/${target})
endforeach()
