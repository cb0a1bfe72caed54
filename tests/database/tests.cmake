# The console's --xdata option on a drawing whose solid carries two
# applications' extended data.
if(TARGET vora)
  add_test(NAME console.xdata
    COMMAND vora -i ${CMAKE_CURRENT_LIST_DIR}/../data/corpus/r2004-acad-materials.dxf --xdata 20f)
  set_tests_properties(console.xdata PROPERTIES PASS_REGULAR_EXPRESSION
    "^ACAD_MATERIAL_MAPPER\n  1070 2\n  1070 0\n  1070 0\n  1011 0 0 0\n  1011 1 0 0\n  1011 0 1 0\n  1011 0 0 1\nACAD_MATERIAL_MAPPER_2\n  1070 0\n  1070 0\n$")
  add_test(NAME console.xdata.unknown
    COMMAND vora -i ${CMAKE_CURRENT_LIST_DIR}/../data/corpus/r2004-acad-materials.dxf --xdata FFFFFF)
  set_tests_properties(console.xdata.unknown PROPERTIES WILL_FAIL TRUE)
endif()
