# For an overlay: vcpkg install qelm --overlay-ports=packaging/vcpkg/ports
#
# The sources are those around this file, or the release that QELM_SOURCE_PATH names in the
# environment.
if(DEFINED ENV{QELM_SOURCE_PATH})
  set(SOURCE_PATH "$ENV{QELM_SOURCE_PATH}")
else()
  get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../../.." ABSOLUTE)
endif()

# The static library is a target of its own, qelm::qelm_static, beside the shared one.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS -DQELM_BUILD_TOOLS=OFF -DQELM_BUILD_TESTS=OFF -DQELM_BUILD_CSHARP=OFF -DQELM_STATIC=ON)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/qelm)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
