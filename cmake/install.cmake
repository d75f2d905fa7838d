# What users install: the shared library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS quarrix_collisions EXPORT QuarrixCollisionsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARN_BUILD_PROGRAM)
  # The program finds the library beside it, wherever both are put.
  file(RELATIVE_PATH from_programs_to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(tarn PROPERTIES INSTALL_RPATH "$ORIGIN/${from_programs_to_libraries}")
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

file(RELATIVE_PATH QUARRIX_FROM_PKGCONFIG_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/quarrix-collisions.pc.in
  ${PROJECT_BINARY_DIR}/quarrix-collisions.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quarrix-collisions.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
