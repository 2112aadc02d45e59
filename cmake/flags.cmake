# cmake/flags.cmake - how every target is compiled.
#
# vatro_flags carries what a target can inherit: the lowest layer links it, so all others have it too.
# vatro_set_properties sets what does not travel along links.

add_library(vatro_flags INTERFACE)
target_compile_features(vatro_flags INTERFACE cxx_std_20)

# Only "native" may be dropped, for compilers that do not know it; they report any other misspelt name.
set(arch_flag "")
if(VATRO_ARCH STREQUAL "native")
  include(CheckCXXCompilerFlag)
  check_cxx_compiler_flag(-march=native VATRO_HAS_NATIVE)
  if(VATRO_HAS_NATIVE)
    set(arch_flag -march=native)
  endif()
elseif(VATRO_ARCH)
  set(arch_flag -march=${VATRO_ARCH})
endif()

if(NOT MSVC)
  target_compile_options(vatro_flags INTERFACE
    ${arch_flag} -Wall -Wextra -Wshadow -Wcast-qual -Wimplicit-fallthrough -Wmissing-declarations
    -fno-math-errno $<$<BOOL:${VATRO_WERROR}>:-Werror>)
endif()

if(VATRO_INSTALL AND NOT MSVC)
  # An installed program does not depend on the folders in which it was built.
  target_compile_options(vatro_flags INTERFACE
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endif()

set(sanitizers "${VATRO_SANITIZE}")
if(VATRO_FUZZ AND NOT sanitizers)
  # Every library is instrumented; the fuzz targets alone link the fuzzer's main.
  set(sanitizers fuzzer-no-link,address,undefined)
endif()
if(sanitizers)
  target_compile_options(vatro_flags INTERFACE
    -fsanitize=${sanitizers} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vatro_flags INTERFACE -fsanitize=${sanitizers})
endif()

set(lto OFF)
if(VATRO_LTO AND NOT sanitizers)
  include(CheckIPOSupported)
  check_ipo_supported(RESULT lto OUTPUT lto_report LANGUAGES CXX)
endif()

# GCC can write machine code beside what the link-time optimiser reads. It costs a fifth of the compile
# time and saves far more: the test programs link the same libraries as they are, where each would
# optimise them all over again. Clang has no such objects, so there they do.
set(lto_is_optional OFF)
if(lto AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(lto_is_optional ON)
endif()

# vatro_set_properties(FOLDER HEADERS): for all targets that FOLDER made. HEADERS is the target whose
# precompiled headers they read.
function(vatro_set_properties folder headers)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    set_target_properties(${target} PROPERTIES
      CXX_EXTENSIONS OFF
      INTERPROCEDURAL_OPTIMIZATION_RELEASE ${lto}
      RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    if(lto_is_optional)
      target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-ffat-lto-objects>)
    endif()
    if(NOT target STREQUAL headers)
      target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
  endforeach()
endfunction()
