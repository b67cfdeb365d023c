# Header, library, CMake package qelm::qelm, pkg-config file, licence.
include(CMakePackageConfigHelpers)

install(TARGETS qelm EXPORT qelmTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(FILES include/qelm.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(FILES LICENSE README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}")
if(WIN32)
  install(FILES "${PROJECT_BINARY_DIR}/qelm.def" DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endif()

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/qelm")
install(EXPORT qelmTargets NAMESPACE qelm:: FILE qelmTargets.cmake DESTINATION "${package_folder}")
configure_package_config_file(cmake/qelmConfig.cmake.in "${PROJECT_BINARY_DIR}/qelmConfig.cmake"
  INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/qelmConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/qelmConfig.cmake"
  "${PROJECT_BINARY_DIR}/qelmConfigVersion.cmake" DESTINATION "${package_folder}")

# Relocatable: the prefix is found from where the .pc file lies.
file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file(cmake/qelm.pc.in "${PROJECT_BINARY_DIR}/qelm.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/qelm.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
