# Header-only dependencies, for native and for cross builds.
#
# Debian installs most of them straight into /usr/include. A cross compiler must
# not search there, or it would see the host's C headers. So a cross build gets
# one folder of links to exactly the headers it needs, and targets of the same
# names as the packages' own.

set(qelm_host_headers "${CMAKE_BINARY_DIR}/host-headers")

# qelm_header_only(TARGET PACKAGE VERSION LINK_NAME...)
# Defines TARGET. Natively it is the package's own; in a cross build it points at
# links to the named entries of the host's include folders.
function(qelm_header_only target package version)
  if(NOT CMAKE_CROSSCOMPILING)
    find_package(${package} ${version} REQUIRED)
    set_target_properties(${target} PROPERTIES IMPORTED_GLOBAL TRUE)
    return()
  endif()
  file(MAKE_DIRECTORY "${qelm_host_headers}")
  foreach(entry IN LISTS ARGN)
    find_path(folder_of_${entry} "${entry}" PATHS /usr/include /usr/include/eigen3
      NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(CREATE_LINK "${folder_of_${entry}}/${entry}" "${qelm_host_headers}/${entry}" SYMBOLIC)
  endforeach()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${qelm_host_headers}")
endfunction()

qelm_header_only(Eigen3::Eigen Eigen3 3.4 Eigen)
qelm_header_only(nanoflann::nanoflann nanoflann 1.4 nanoflann.hpp)
