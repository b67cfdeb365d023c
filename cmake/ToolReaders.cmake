# qelm_tool_readers: the part of the command-line tool that takes in what users give it,
# files and the grammars of its options, without the library behind it. The tool is
# linked from it, and so are the fuzzers.
include_guard(GLOBAL)

# fmt, compiled once. Debian has it as headers, and as a shared library for the host alone;
# with headers alone every source would compile all of it again, five seconds each time.
qelm_header_only(fmt::fmt-header-only fmt 9 fmt)
add_library(qelm_fmt STATIC "${PROJECT_SOURCE_DIR}/tools/qelm/text/fmt_library.cpp")
target_include_directories(qelm_fmt SYSTEM PUBLIC
  $<TARGET_PROPERTY:fmt::fmt-header-only,INTERFACE_INCLUDE_DIRECTORIES>)
target_compile_features(qelm_fmt PUBLIC cxx_std_20)

qelm_header_only(nlohmann_json::nlohmann_json nlohmann_json 3.9 nlohmann)

# What decompresses: libdeflate, twice as fast, or zlib, which Debian has for Windows as well. As a
# static library: no package needs another one for it.
add_library(qelm_inflate INTERFACE)
if(NOT CMAKE_CROSSCOMPILING)
  find_library(QELM_LIBDEFLATE_LIBRARY libdeflate.a)
endif()
if(QELM_LIBDEFLATE_LIBRARY)
  target_link_libraries(qelm_inflate INTERFACE "${QELM_LIBDEFLATE_LIBRARY}")
  target_compile_definitions(qelm_inflate INTERFACE QELM_HAS_LIBDEFLATE)
else()
  find_library(QELM_ZLIB_LIBRARY libz.a REQUIRED)
  find_path(QELM_ZLIB_FOLDER zlib.h REQUIRED)
  target_link_libraries(qelm_inflate INTERFACE "${QELM_ZLIB_LIBRARY}")
  if(CMAKE_CROSSCOMPILING)
    target_include_directories(qelm_inflate SYSTEM INTERFACE "${QELM_ZLIB_FOLDER}")
  endif()
endif()

# Images of colour ramps, read and written.
find_path(QELM_STB_FOLDER stb/stb_image_write.h PATHS /usr/include
  NO_CMAKE_FIND_ROOT_PATH REQUIRED)
if(CMAKE_CROSSCOMPILING)
  qelm_link_to_headers("${QELM_STB_FOLDER}" stb)
endif()

add_library(qelm_tool_readers OBJECT
  "${PROJECT_SOURCE_DIR}/tools/qelm/colours/colour_scale.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/colours/published_ramps.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/colours/ramp.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/colours/ramp_from_image.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/along_curve.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/conditions.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/csv_dialect.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/expression.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/field_file.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/mesh_index.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/npy_array.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/polyline_file.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/prescribed.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/selected.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/selectors.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/conditions/vertex_csv.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/curves/levels.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/encodings/base64.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/encodings/inflate.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/encodings/number_source.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/encodings/xml_scanner.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/encodings/zip_archive.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/fields/field_csv.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/files/file_bytes.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/files/mapped_pages.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/files/paths.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/files/result_name.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh/boundary.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh/feature_edges.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh/half_edges.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh/mesh_checks.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh/used_part.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/cell_soup.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/ear_clipping.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/gltf_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/gltf_file.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/mesh_reader.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/mesh_writer.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/msh_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/obj_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/off_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/ply_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/ply_header.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/point_merger.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/stl_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/threemf_data.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/triangulate.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/vtk_legacy.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/vtk_writer.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/vtk_xml.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/mesh_files/vtk_xml_arrays.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/terminal/console.cpp"
  "${PROJECT_SOURCE_DIR}/tools/qelm/text/text.cpp")
target_include_directories(qelm_tool_readers PUBLIC "${PROJECT_SOURCE_DIR}/tools/qelm")
target_link_libraries(qelm_tool_readers PUBLIC qelm_build_flags qelm_fmt qelm_inflate)
# JSON, for glTF.
target_link_libraries(qelm_tool_readers PUBLIC nlohmann_json::nlohmann_json)
# Its headers, for the vertices along a curve.
target_link_libraries(qelm_tool_readers PRIVATE nanoflann::nanoflann)
if(QELM_QUICK_BUILD)
  set_target_properties(qelm_tool_readers PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 9)
endif()
