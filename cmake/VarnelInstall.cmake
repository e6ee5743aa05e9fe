# Installable package: find_package(Varnel CONFIG COMPONENTS core standalone testing screens)
# and a pkg-config file "varnel".
include(CMakePackageConfigHelpers)

get_property(components GLOBAL PROPERTY VARNEL_COMPONENTS)
install(TARGETS ${components} varnel_core EXPORT VarnelCoreTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS varnel_standalone EXPORT VarnelStandaloneTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS varnel_testing EXPORT VarnelTestingTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/varnel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY standalone/include/varnel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY testing/include/varnel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/varnel)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Varnel)
install(EXPORT VarnelCoreTargets NAMESPACE Varnel:: DESTINATION ${config_dir})
install(EXPORT VarnelStandaloneTargets NAMESPACE Varnel:: DESTINATION ${config_dir})
install(EXPORT VarnelTestingTargets NAMESPACE Varnel:: DESTINATION ${config_dir})
if(TARGET varnel_screens)
  install(TARGETS varnel_screens EXPORT VarnelScreensTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY screens/include/varnel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT VarnelScreensTargets NAMESPACE Varnel:: DESTINATION ${config_dir})
endif()
configure_package_config_file(cmake/VarnelConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VarnelConfig.cmake INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VarnelConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VarnelConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VarnelConfigVersion.cmake
        DESTINATION ${config_dir})

set(VARNEL_PC_LIBS "")
foreach(lib IN LISTS components)
  string(PREPEND VARNEL_PC_LIBS "-l${lib} ")
endforeach()
configure_file(cmake/varnel.pc.in ${CMAKE_CURRENT_BINARY_DIR}/varnel.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/varnel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
