# The road-edge example end to end: it must build its feature line, save it,
# and the console (through the module) must read back the model it printed.
if(TARGET road_edge AND TARGET vora)
  add_test(NAME example.road_edge
    COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/road_edge_check.py
      $<TARGET_FILE:road_edge> $<TARGET_FILE:vora>)
  set_tests_properties(example.road_edge PROPERTIES TIMEOUT 120)
endif()
