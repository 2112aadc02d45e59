# cmake/profile.cmake - optimising for what the programs really do; scripts/build_fast.sh runs the steps.
#
# A build with VATRO_PROFILE=record makes programs that count how often their code runs; its target
# "profile" runs them. The next build in the same folder, with VATRO_PROFILE=use, reads the counts.
set(profile_folder ${PROJECT_BINARY_DIR}/profile)

# Called once the programs are there. They run with one thread each: counts that threads share get lost,
# and what is built from them would differ from time to time.
function(vatro_profile)
  if(NOT VATRO_PROFILE STREQUAL "record")
    return()
  endif()
  add_custom_target(profile
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${profile_folder}
    COMMAND $<TARGET_FILE:vatro> bench 9
    COMMAND sh -c "printf 'perft 5\\neval\\n' | '$<TARGET_FILE:vatro>'"
    COMMAND $<TARGET_FILE:vatro-tbgen> --threads 1 --out ${profile_folder}/tables KQKR KRKN KPKP
    COMMAND ${merge_profiles}
    DEPENDS vatro vatro-tbgen VERBATIM)
endfunction()

if(NOT VATRO_PROFILE)
  return()
elseif(NOT VATRO_PROFILE MATCHES "^(record|use)$")
  message(FATAL_ERROR "VATRO_PROFILE must be \"record\", \"use\" or empty")
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(profile_record -fprofile-generate=${profile_folder})
  set(profile_use -fprofile-use=${profile_folder}/merged.profdata)
  # Another version's does not read the counts.
  string(REGEX MATCH "^[0-9]+" clang_version ${CMAKE_CXX_COMPILER_VERSION})
  find_program(LLVM_PROFDATA NAMES llvm-profdata-${clang_version} llvm-profdata REQUIRED)
  set(merge_profiles sh -c "${LLVM_PROFDATA} merge -o ${profile_folder}/merged.profdata ${profile_folder}/*.profraw")
else()
  set(profile_record -fprofile-generate -fprofile-dir=${profile_folder})
  set(profile_use -fprofile-use -fprofile-dir=${profile_folder} -Wno-missing-profile)
  set(merge_profiles true)
endif()
target_compile_options(vatro_flags INTERFACE ${profile_${VATRO_PROFILE}})
target_link_options(vatro_flags INTERFACE ${profile_${VATRO_PROFILE}})
