# The vora console against the DXF corpus (see console_test.sh). The checks
# with the shared tools run when ../shared (next to the repository) exists and
# are skipped otherwise.
if(TARGET vora)
  set(_vora_corpus ${CMAKE_CURRENT_LIST_DIR}/../../data/corpus)
  get_filename_component(_vora_shared ${PROJECT_SOURCE_DIR}/../shared ABSOLUTE)
  if(DEFINED ENV{VORA_SHARED_DIR})
    set(_vora_shared $ENV{VORA_SHARED_DIR})
  endif()
  foreach(mode cli tools ezdxf)
    add_test(NAME console.${mode}
      COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/console_test.sh $<TARGET_FILE:vora> ${_vora_corpus} ${mode} ${_vora_shared})
    set_tests_properties(console.${mode} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 600)
  endforeach()
endif()

# The options that load the module (--list filters, --featurelines, --dump,
# --module) on a drawing made by the module itself (make_drawing.cpp).
if(TARGET vora)
  add_executable(vora_console_drawing ${CMAKE_CURRENT_LIST_DIR}/make_drawing.cpp)
  target_include_directories(vora_console_drawing PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(vora_console_drawing PRIVATE voraclib_testing vorahost vora_developer_flags)
  add_library(vora_console_probe MODULE ${CMAKE_CURRENT_LIST_DIR}/probe_module.cpp)
  target_include_directories(vora_console_probe PRIVATE ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(vora_console_probe PRIVATE vora_developer_flags)
  add_test(NAME console.module
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/console_module_test.py
      $<TARGET_FILE:vora> $<TARGET_FILE:vora_console_drawing> $<TARGET_FILE:voraclib>
      $<TARGET_FILE:vora_console_probe> ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR})
  set_tests_properties(console.module PROPERTIES TIMEOUT 120)
endif()
