# Warning and floating-point flags for our own targets, never forced on consumers.
add_library(vora_developer_flags INTERFACE)
target_compile_options(vora_developer_flags INTERFACE
  -Wall -Wextra -Wpedantic
  # Results are compared bit for bit: no fused multiply-add behind our back.
  -ffp-contract=off
  # Several exported C functions return AcGePoint3d or AcDbObjectId by value,
  # as the host API's C callers expect: standard-layout types whose calling
  # convention is that of a C struct of the same members.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-return-type-c-linkage>
  $<$<BOOL:${VORA_WERROR}>:-Werror>)

# Sanitizers are switched on for every target of the build tree by the preset.
set(VORA_SANITIZE "" CACHE STRING "Sanitizers to enable, e.g. address,undefined")
if(VORA_SANITIZE)
  add_compile_options(-fsanitize=${VORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VORA_SANITIZE})
endif()

# In the fuzz build every target carries libFuzzer's coverage instrumentation,
# so the fuzzer is guided by the reader's branches, not only its own.
if(VORA_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
