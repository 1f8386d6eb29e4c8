include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TQ_BACnetTargets NAMESPACE TQ:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TQ_BACnet)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TQ_BACnetConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TQ_BACnetConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TQ_BACnet)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TQ_BACnetConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TQ_BACnetConfig.cmake ${PROJECT_BINARY_DIR}/TQ_BACnetConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TQ_BACnet)
