# The page that `qelm view` fills in is bundled from tools/page by esbuild, which npm
# installs (scripts/page). Without it everything else is built, and `qelm view` says what
# is missing.
set(QELM_VIEW_PAGE AUTO CACHE STRING "Build the page of `qelm view`: AUTO (when npm's packages are there), ON, OFF")
set_property(CACHE QELM_VIEW_PAGE PROPERTY STRINGS AUTO ON OFF)

# qelm_add_view_page(TARGET): page/view_page.cpp of TARGET takes in the page.
function(qelm_add_view_page target)
  set(folder "${PROJECT_SOURCE_DIR}/tools/page")
  set(QELM_HAS_VIEW_PAGE OFF CACHE INTERNAL "")
  find_program(QELM_NODE node NO_CMAKE_FIND_ROOT_PATH)
  if(QELM_VIEW_PAGE STREQUAL "OFF")
    return()
  elseif(NOT QELM_NODE OR NOT EXISTS "${folder}/node_modules/esbuild")
    if(QELM_VIEW_PAGE STREQUAL "ON")
      message(FATAL_ERROR "QELM_VIEW_PAGE is ON, but npm's packages are not there; run scripts/page")
    endif()
    message(STATUS "Without the page of `qelm view`; scripts/page installs what it needs")
    return()
  endif()
  set(QELM_HAS_VIEW_PAGE ON CACHE INTERNAL "")
  set(page "${CMAKE_CURRENT_BINARY_DIR}/view.html")
  file(GLOB sources CONFIGURE_DEPENDS "${folder}/src/*")
  add_custom_command(OUTPUT "${page}" VERBATIM
    COMMAND "${QELM_NODE}" build.mjs src/view.js src/view.html "${page}"
    WORKING_DIRECTORY "${folder}"
    DEPENDS "${folder}/build.mjs" "${folder}/package-lock.json" ${sources}
    COMMENT "Bundling the page of `qelm view`")
  set_source_files_properties(page/view_page.cpp PROPERTIES
    COMPILE_DEFINITIONS "QELM_VIEW_PAGE=\"${page}\"" OBJECT_DEPENDS "${page}")
endfunction()
