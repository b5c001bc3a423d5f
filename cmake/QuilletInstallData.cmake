# What is installed beside libraries and programs: files that people read, and files that other programs do.
install(DIRECTORY simulator/machines simulator/schema DESTINATION ${CMAKE_INSTALL_DATADIR}/quillet
  FILES_MATCHING PATTERN "*.mof")
install(PROGRAMS scripts/make-machine scripts/make-flash-image DESTINATION ${CMAKE_INSTALL_DATADIR}/quillet)
install(FILES serving/man/quillet-simulator.1 simulator/man/quillet-make-machine.1
  simulator/man/quillet-make-flash-image.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# Where Ansible looks for roles.
install(DIRECTORY examples/fleet/roles/quillet DESTINATION ${CMAKE_INSTALL_DATADIR}/ansible/roles
  PATTERN __pycache__ EXCLUDE)

# The pages lie as in the tree, so that their links lead somewhere.
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/quillet)
install(DIRECTORY docs examples DESTINATION ${doc_dir} USE_SOURCE_PERMISSIONS
  PATTERN __pycache__ EXCLUDE PATTERN CMakeLists.txt EXCLUDE PATTERN Doxyfile EXCLUDE)
foreach(page IN ITEMS README.md CHANGELOG.md CONTRIBUTING.md benchmarks/README.md benchmarks/sample-table.txt
    powershell/README.md property-pages/README.md simulator/README.md tests/Src/operations/README.md
    tests/Src/over-the-wire.txt tests/cli/golden/README.md tests/package/README.md wmi/README.md)
  cmake_path(GET page PARENT_PATH folder)
  install(FILES ${page} DESTINATION ${doc_dir}/${folder})
endforeach()
