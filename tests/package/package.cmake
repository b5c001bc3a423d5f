# Installs the build tree, makes its package, and builds, tests and links somebody else's project against what the
# package brings.
# BUILD_DIR, WORK_DIR, SOURCE_DIR, LIBDIR; TOOLCHAIN and EMULATOR of a cross-build; COMPILER and FLAGS of
# the build tree.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT status EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "${command}\nended with ${status}:\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(installed ${WORK_DIR}/installed)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${installed})

foreach(file IN ITEMS share/man/man1/quilletctl.1 share/bash-completion/completions/quilletctl)
  if(NOT EXISTS ${installed}/${file})
    message(FATAL_ERROR "${file} was not installed")
  endif()
endforeach()

# cpack comes with CMake, and is told its generator by the build tree.
cmake_path(GET CMAKE_COMMAND PARENT_PATH programs)
run(${programs}/cpack --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR}/package)
if(TOOLCHAIN)
  file(GLOB package ${WORK_DIR}/package/*.zip)
  file(ARCHIVE_EXTRACT INPUT ${package} DESTINATION ${WORK_DIR}/unpacked)
  file(GLOB prefix ${WORK_DIR}/unpacked/*) # the zip holds one folder, of its own name
else()
  file(GLOB package ${WORK_DIR}/package/*.deb)
  run(dpkg-deb --extract ${package} ${WORK_DIR}/unpacked)
  set(prefix ${WORK_DIR}/unpacked/usr)
endif()
file(GLOB_RECURSE files RELATIVE ${installed} ${installed}/*)
file(GLOB_RECURSE packaged RELATIVE ${prefix} ${prefix}/*)
if(NOT packaged STREQUAL files)
  message(FATAL_ERROR "the package has other files than the installation\n${packaged}\nnot\n${files}")
endif()

# The outside project must not find its way back into this tree.
file(COPY ${SOURCE_DIR}/consumer DESTINATION ${WORK_DIR})
file(GLOB_RECURSE texts ${prefix}/*.cmake ${prefix}/*.pc)
foreach(text IN LISTS texts)
  file(READ ${text} content)
  cmake_path(GET BUILD_DIR PARENT_PATH builds)
  cmake_path(GET builds PARENT_PATH tree)
  string(REPLACE "${WORK_DIR}" "" content "${content}")
  string(FIND "${content}" "${tree}/" found)
  if(NOT found EQUAL -1)
    message(FATAL_ERROR "${text} names a folder of the source tree")
  endif()
endforeach()

set(arguments -G Ninja -S ${WORK_DIR}/consumer -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${prefix}
  "-DCMAKE_CXX_FLAGS=${FLAGS}")
if(TOOLCHAIN)
  list(APPEND arguments -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
else()
  list(APPEND arguments -DCMAKE_CXX_COMPILER=${COMPILER})
endif()
run(${CMAKE_COMMAND} ${arguments})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(ctest --test-dir ${WORK_DIR}/build --output-on-failure --no-tests=error)
message("${out}")

if(NOT TOOLCHAIN)
  # The same without CMake.
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
  run(pkg-config --cflags --libs quillet)
  separate_arguments(flags UNIX_COMMAND "${out} ${FLAGS}")
  file(WRITE ${WORK_DIR}/version.cpp "#include <quillet/Quillet.h>\nint main() { CQuillet quillet; return 0; }\n")
  run(${COMPILER} -std=c++20 ${WORK_DIR}/version.cpp -o ${WORK_DIR}/version ${flags})
  set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
  run(${WORK_DIR}/version)
endif()
