# What users install: the shared library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS quarrix_collisions EXPORT QuarrixCollisionsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARN_BUILD_PROGRAM)
  install(TARGETS tarn RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(EXPORT QuarrixCollisionsTargets NAMESPACE Quarrix::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuarrixCollisions)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuarrixCollisionsConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuarrixCollisionsConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QuarrixCollisionsConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuarrixCollisions)
install(FILES ${PROJECT_BINARY_DIR}/QuarrixCollisionsConfig.cmake
  ${PROJECT_BINARY_DIR}/QuarrixCollisionsConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuarrixCollisions)

configure_file(${PROJECT_SOURCE_DIR}/cmake/quarrix-collisions.pc.in
  ${PROJECT_BINARY_DIR}/quarrix-collisions.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quarrix-collisions.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
