# qelm_build_flags: what every target of this project is compiled with. None of
# it reaches consumers.
add_library(qelm_build_flags INTERFACE)

# Results are promised bit for bit: no fused multiply-add, no reassociation.
target_compile_options(qelm_build_flags INTERFACE -ffp-contract=off -fno-fast-math)
target_compile_options(qelm_build_flags INTERFACE -Wall -Wextra -Wconversion)
if(QELM_WARNINGS_AS_ERRORS)
  target_compile_options(qelm_build_flags INTERFACE -Werror)
endif()

if(QELM_SANITIZE)
  add_compile_options(-fsanitize=${QELM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QELM_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # Bits may be shifted out of unsigned numbers; the standard says what happens.
    add_compile_options(-fno-sanitize=unsigned-shift-base
      "-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizer-ignorelist.txt")
  endif()
  # The sanitizers' malloc aligns to 16 bytes as the C library's does. Unless told
  # so, Eigen would use an allocator of its own here, and what is tested would not
  # be what is shipped.
  add_compile_definitions(EIGEN_MALLOC_ALREADY_ALIGNED=1)
endif()

if(MINGW)
  # Programs and the DLL need nothing but Windows itself; DEP, ASLR and
  # high-entropy addresses are on; the same sources give the same bytes.
  add_link_options(-static -static-libgcc -static-libstdc++
    LINKER:--nxcompat LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--no-insert-timestamp)
elseif(UNIX AND NOT EMSCRIPTEN)
  add_compile_options(-fstack-protector-strong)
  add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
