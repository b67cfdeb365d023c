# Header, library, CMake package qelm::qelm, pkg-config file, licence. Three components,
# as distributions part them: runtime (the library), development, tool.
include(CMakePackageConfigHelpers)

install(TARGETS qelm EXPORT qelmTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
if(QELM_STATIC)
  install(TARGETS qelm_static EXPORT qelmTargets
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
endif()
install(FILES include/qelm.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
if(NOT QELM_DEBIAN) # its documents lie elsewhere
  install(FILES LICENSE README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT development)
endif()
if(WIN32)
  install(FILES "${PROJECT_BINARY_DIR}/qelm.def" DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT development)
  if(TARGET qelm_msvc_import_library)
    install(FILES "${PROJECT_BINARY_DIR}/lib/qelm.lib" DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT development)
  endif()
endif()

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/qelm")
install(EXPORT qelmTargets NAMESPACE qelm:: FILE qelmTargets.cmake DESTINATION "${package_folder}"
  COMPONENT development)
configure_package_config_file(cmake/qelmConfig.cmake.in "${PROJECT_BINARY_DIR}/qelmConfig.cmake"
  INSTALL_DESTINATION "${package_folder}" PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/qelmConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/qelmConfig.cmake"
  "${PROJECT_BINARY_DIR}/qelmConfigVersion.cmake" DESTINATION "${package_folder}"
  COMPONENT development)

# Relocatable: the prefix is found from where the .pc file lies.
file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file(cmake/qelm.pc.in "${PROJECT_BINARY_DIR}/qelm.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/qelm.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
  COMPONENT development)

if(QELM_DEBIAN)
  include(DebianPackages)
endif()
