# What `cmake --install` puts where: the library (static and shared), its headers, the provider simulator, the programs,
# a CMake package and pkg-config files. `cpack` makes an archive of it; Debian's packages are told in debian/.
include(CMakePackageConfigHelpers)

# Apart from the system's own headers: some of ours have the names of the Windows SDK's.
set(platform_include ${CMAKE_INSTALL_INCLUDEDIR}/quillet-sdk)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillet)

set(installed quillet quillet_client quillet_shared quillet_wmi quillet_platform)
set_target_properties(quillet_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(quillet_client PROPERTIES EXPORT_NAME client)
set_target_properties(quillet_simulator PROPERTIES EXPORT_NAME simulator)
set_target_properties(quillet_wmi PROPERTIES EXPORT_NAME wmi)
install(TARGETS ${installed} EXPORT QuilletTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Apart, because it is another package of Debian's.
install(TARGETS quillet_simulator EXPORT QuilletSimulatorTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(library IN LISTS installed ITEMS quillet_simulator)
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
  # Counting and refusing memory is for tests of this tree.
  install(DIRECTORY platform/include/ DESTINATION ${platform_include}
    FILES_MATCHING PATTERN "*.h" PATTERN TestHooks.h EXCLUDE)
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
install(EXPORT QuilletSimulatorTargets NAMESPACE Quillet:: DESTINATION ${package_dir})
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
set(pkgconfig_files quillet.pc quillet-client.pc quillet-simulator.pc quillet-wmi.pc)
if(TARGET Quillet::remote)
  list(APPEND pkgconfig_files quillet-remote.pc)
endif()
foreach(file IN LISTS pkgconfig_files)
  configure_file(cmake/${file}.in ${file} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# For users of PowerShell, in a folder that is called like the module.
configure_file(powershell/Quillet.psd1.in powershell/Quillet.psd1 @ONLY)
if(WIN32)
  install(FILES powershell/Quillet.psm1 ${PROJECT_BINARY_DIR}/powershell/Quillet.psd1 DESTINATION powershell/Quillet)
endif()

if(NOT WIN32)
  include(QuilletInstallData)
endif()
# Who holds the rights, of ours and of what is compiled in.
install(FILES debian/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillet)

set(CPACK_PACKAGE_VENDOR "Quillet")
set(CPACK_PACKAGE_CONTACT "Quillet developers <quillet@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  # Beside the zip, what winget wants to know of it.
  set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/winget/write-manifests.cmake)
else()
  set(CPACK_GENERATOR TGZ)
endif()
include(CPack)
