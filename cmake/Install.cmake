# The module, the client library, the contract and the desk, with a CMake package for those who embed the module.
include(CMakePackageConfigHelpers)

install(TARGETS PanelCompacts compacts-client host EXPORT PanelCompactsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS compacts-desk compacts-book RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS compacts-xls RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/PanelCompacts)
install(DIRECTORY host/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/PanelCompacts FILES_MATCHING PATTERN "*.h")
install(FILES panels/panels_api.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/PanelCompacts)
install(FILES panels/compacts/CCompactsPanel.h panels/compacts/push_load.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/PanelCompacts/compacts)
install(FILES panels/appointment/CQueryAppointmentInfoPanel.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/PanelCompacts/appointment)
install(DIRECTORY client/desk/config client/counter/sample_book DESTINATION ${CMAKE_INSTALL_DATADIR}/PanelCompacts)
set_target_properties(compacts-desk PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set_target_properties(PanelCompacts PROPERTIES INSTALL_RPATH "$ORIGIN")

install(EXPORT PanelCompactsTargets NAMESPACE PanelCompacts:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/PanelCompacts)
configure_package_config_file(cmake/PanelCompactsConfig.cmake.in "${CMAKE_CURRENT_BINARY_DIR}/PanelCompactsConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/PanelCompacts)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/PanelCompactsConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/PanelCompactsConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/PanelCompactsConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/PanelCompacts)
