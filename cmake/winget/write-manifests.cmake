# Run by cpack after it has made the zip: writes what winget wants to know of it, into the folder "winget" beside it.
# Where the zip will be had from is not known yet; who publishes it says so: cpack -D CPACK_WINGET_URL=https://…
if(NOT CPACK_WINGET_URL)
  set(CPACK_WINGET_URL https://example.invalid/quillet)
endif()
foreach(zip IN LISTS CPACK_PACKAGE_FILES)
  cmake_path(GET zip FILENAME zip_name)
  file(SHA256 ${zip} sha256)
  string(TOUPPER ${sha256} sha256)
  # The layout of winget's own repository of manifests.
  set(manifests ${CPACK_PACKAGE_DIRECTORY}/winget/manifests/q/Quillet/Quillet/${CPACK_PACKAGE_VERSION})
  foreach(kind IN ITEMS .yaml .installer.yaml .locale.en-US.yaml)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/Quillet.Quillet${kind}.in ${manifests}/Quillet.Quillet${kind} @ONLY
      NEWLINE_STYLE LF)
  endforeach()
  message(STATUS "winget's manifests are in ${CPACK_PACKAGE_DIRECTORY}/winget")
endforeach()
