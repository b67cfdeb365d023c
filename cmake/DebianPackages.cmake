# libqelmN, libqelm-dev and qelm as Debian packages, one for each component; scripts/package
# asks for them with QELM_DEBIAN, which names a folder with what must lie in each package's
# documents: copyright and changelog.gz, and in the tool's also the licence texts.
set(library libqelm${PROJECT_VERSION_MAJOR})
foreach(package ${library} libqelm-dev qelm)
  set(component_of_${package} development)
endforeach()
set(component_of_${library} runtime)
set(component_of_qelm tool)
foreach(package ${library} libqelm-dev qelm)
  install(DIRECTORY "${QELM_DEBIAN}/${package}/" DESTINATION "share/doc/${package}"
    COMPONENT ${component_of_${package}})
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/packaging/debian/qelm.lintian-overrides"
  DESTINATION share/lintian/overrides RENAME qelm COMPONENT tool)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qelm)
set(CPACK_PACKAGE_CONTACT "the qelm developers <developers@qelm.example.org>")
set(CPACK_COMPONENTS_ALL runtime development tool)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://qelm.example.org/")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Computes smooth fields between prescribed values on triangle meshes, their
level curves and heat maps; welds and checks meshes.
.
This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqelm-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Computes smooth fields between prescribed values on triangle meshes, their
level curves and heat maps; welds and checks meshes.
.
This package holds the header, and files for CMake and pkg-config.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME qelm)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "Reads a mesh as OBJ, OFF, PLY or STL, solves for a smooth field between the
values that it is given, and writes fields, level curves, heat maps, drawings
and pages for a browser.
.
This package holds the command-line tool, its manual page and completions.")
include(CPack)
