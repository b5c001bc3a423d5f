# What `cmake --install` puts where, and what `cpack` makes of it: the library (static and shared), its headers,
# the provider simulator, quilletctl, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

# Apart from the system's own headers: some of ours have the names of the Windows SDK's.
set(platform_include ${CMAKE_INSTALL_INCLUDEDIR}/quillet-sdk)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillet)

set(installed quillet quillet_client quillet_shared quillet_simulator quillet_wmi quillet_platform)
set_target_properties(quillet_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(quillet_client PROPERTIES EXPORT_NAME client)
set_target_properties(quillet_simulator PROPERTIES EXPORT_NAME simulator)
set_target_properties(quillet_wmi PROPERTIES EXPORT_NAME wmi)
install(TARGETS ${installed} EXPORT QuilletTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(library IN LISTS installed)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()

install(DIRECTORY include/quillet ${PROJECT_BINARY_DIR}/include/quillet DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY simulator/include/quillet-simulator wmi/include/quillet-wmi DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
if(NOT QUILLET_HAVE_ATLBASE)
  install(FILES platform/atl/atlbase.h DESTINATION ${platform_include})
endif()
if(NOT WIN32)
  install(DIRECTORY platform/include/ DESTINATION ${platform_include} FILES_MATCHING PATTERN "*.h")
endif()
if(NOT QUILLET_HAVE_ATLBASE)
  target_include_directories(quillet_platform INTERFACE $<INSTALL_INTERFACE:${platform_include}>)
  set(pkgconfig_sdk "-I\${includedir}/quillet-sdk ")
endif()

if(TARGET Quillet::remote)
  # Apart, because whoever links it needs what it links.
  set_target_properties(quillet_remote PROPERTIES EXPORT_NAME remote)
  set_target_properties(quillet_soap PROPERTIES EXPORT_NAME soap)
  install(TARGETS quillet_remote quillet_soap EXPORT QuilletRemoteTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  target_include_directories(quillet_remote INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  install(DIRECTORY wsman/include/quillet-wsman DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
  install(EXPORT QuilletRemoteTargets NAMESPACE Quillet:: DESTINATION ${package_dir})
endif()

install(EXPORT QuilletTargets NAMESPACE Quillet:: DESTINATION ${package_dir})
configure_package_config_file(cmake/QuilletConfig.cmake.in QuilletConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(QuilletConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuilletConfig.cmake ${PROJECT_BINARY_DIR}/QuilletConfigVersion.cmake
  DESTINATION ${package_dir})

if(WIN32)
  set(pkgconfig_libraries "-lwbemuuid -lole32 -loleaut32 -ladvapi32 -luuid")
else()
  set(pkgconfig_libraries "-lquillet_platform -pthread")
endif()
# The files find their prefix from where they lie.
file(RELATIVE_PATH pkgconfig_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(file IN ITEMS quillet.pc quillet-client.pc quillet-simulator.pc)
  configure_file(cmake/${file}.in ${file} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# For users of PowerShell, in a folder that is called like the module.
configure_file(powershell/Quillet.psd1.in powershell/Quillet.psd1 @ONLY)
if(WIN32)
  install(FILES powershell/Quillet.psm1 ${PROJECT_BINARY_DIR}/powershell/Quillet.psd1 DESTINATION powershell/Quillet)
endif()

set(CPACK_PACKAGE_VENDOR "Quillet")
set(CPACK_PACKAGE_CONTACT "Quillet developers <quillet@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
