# Header-only dependencies, for native and for cross builds.
#
# Debian installs most of them straight into /usr/include. A cross compiler must
# not search there, or it would see the host's C headers. So a cross build gets
# one folder of links to exactly the headers it needs, and targets of the same
# names as the packages' own.
set(QELM_HEADER_FOLDERS "" CACHE STRING
  "Folders in which header-only dependencies are looked for before anywhere else; scripts/compat sets it")

set(qelm_host_headers "${CMAKE_BINARY_DIR}/host-headers")

# qelm_header_only(TARGET PACKAGE RANGE ENTRY)
# Defines TARGET. Natively it is the package's own; in a cross build without that
# package, and for what lies in QELM_HEADER_FOLDERS, it points at links to ENTRY.
# RANGE is "LEAST" or "LEAST...<LIMIT". Not find_package's own: a package that says
# "compatible within one major version" refuses every range that spans two.
function(qelm_header_only target package range entry)
  find_path(folder_of_${entry} "${entry}" PATHS ${QELM_HEADER_FOLDERS}
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT folder_of_${entry})
    find_package(${package} QUIET)
    if(NOT ${package}_FOUND AND NOT CMAKE_CROSSCOMPILING)
      message(FATAL_ERROR "qelm needs ${package} ${range}, which CMake does not find")
    endif()
  endif()
  if(${package}_FOUND)
    set(found "${${package}_VERSION}")
    set_target_properties(${target} PROPERTIES IMPORTED_GLOBAL TRUE)
  else()
    find_path(folder_of_${entry} "${entry}" PATHS /usr/include /usr/include/eigen3
      NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    qelm_link_to_headers(${folder_of_${entry}} ${entry})
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE "${qelm_host_headers}")
    qelm_version_in_headers("${folder_of_${entry}}" ${package} found)
  endif()
  string(REPLACE "...<" ";" ends "${range}")
  list(GET ends 0 least)
  list(GET ends -1 limit)
  if(found AND (found VERSION_LESS least OR (NOT limit STREQUAL least AND NOT found VERSION_LESS limit)))
    message(FATAL_ERROR "qelm needs ${package} ${range}, but found ${found}")
  endif()
endfunction()

function(qelm_link_to_headers folder)
  file(MAKE_DIRECTORY "${qelm_host_headers}")
  foreach(entry IN LISTS ARGN)
    file(CREATE_LINK "${folder}/${entry}" "${qelm_host_headers}/${entry}" SYMBOLIC)
  endforeach()
endfunction()

# What the headers of Eigen and nanoflann say themselves; nothing for other packages.
function(qelm_version_in_headers folder package result)
  set(version "")
  if(package STREQUAL "Eigen3")
    foreach(file Eigen/Version Eigen/src/Core/util/Macros.h) # of 5 and of 3.4
      if(EXISTS "${folder}/${file}")
        file(STRINGS "${folder}/${file}" lines REGEX "define EIGEN_(WORLD|MAJOR|MINOR|PATCH)_VERSION +[0-9]+")
        string(REGEX MATCHALL "VERSION +[0-9]+" numbers "${lines}")
        list(TRANSFORM numbers REPLACE "VERSION +" "")
        list(JOIN numbers "." version)
        break()
      endif()
    endforeach()
    # From 5 on, the "world" stays 3 and is not part of the version.
    string(REGEX REPLACE "^3\\.([5-9]|[1-9][0-9])\\." "\\1." version "${version}")
  elseif(package STREQUAL "nanoflann")
    # Hexadecimal digits, 0xMmP up to 1.5 and 0xMMmmPP later.
    file(STRINGS "${folder}/nanoflann.hpp" line REGEX "define NANOFLANN_VERSION 0x")
    if(line MATCHES "0x([0-9A-F])([0-9A-F])([0-9A-F])$")
      set(version "${CMAKE_MATCH_1};${CMAKE_MATCH_2};${CMAKE_MATCH_3}")
    elseif(line MATCHES "0x([0-9A-F][0-9A-F])([0-9A-F][0-9A-F])([0-9A-F][0-9A-F])$")
      set(version "${CMAKE_MATCH_1};${CMAKE_MATCH_2};${CMAKE_MATCH_3}")
    endif()
    foreach(number IN LISTS version)
      math(EXPR number "0x${number}")
      list(APPEND numbers ${number})
    endforeach()
    list(JOIN numbers "." version)
  endif()
  set(${result} "${version}" PARENT_SCOPE)
endfunction()

qelm_header_only(Eigen3::Eigen Eigen3 3.4...<6 Eigen)
qelm_header_only(nanoflann::nanoflann nanoflann 1.4...<2 nanoflann.hpp)
