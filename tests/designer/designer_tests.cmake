# Forms made in Designer, compiled by uic into the forms test.
set_target_properties(tst_designer_forms PROPERTIES AUTOUIC ON
  AUTOUIC_SEARCH_PATHS ${CMAKE_CURRENT_LIST_DIR}/forms)
target_sources(tst_designer_forms PRIVATE ${CMAKE_CURRENT_LIST_DIR}/forms/customer_card.ui)

if(TARGET kesh_designer)
  find_package(Qt6 REQUIRED COMPONENTS Designer)
endif()
set(KESH_DESIGNER_FORMS_DIR ${CMAKE_CURRENT_LIST_DIR}/forms)

# A test of the plugin: the plugin's SOURCES compiled in, its LIBRARIES linked, told where
# the built plugin, uic and the test forms are. Left out (disabled) when the plugin is not
# built or a library was not found.
function(kesh_designer_test test)
  cmake_parse_arguments(PARSE_ARGV 1 T "" "" "SOURCES;LIBRARIES")
  set(found TRUE)
  foreach(lib IN LISTS T_LIBRARIES)
    if(lib MATCHES "-NOTFOUND$")
      set(found FALSE)
    endif()
  endforeach()
  if(NOT TARGET kesh_designer OR NOT found)
    set_target_properties(${test} PROPERTIES EXCLUDE_FROM_ALL ON)
    set_tests_properties(${test} PROPERTIES DISABLED ON)
    return()
  endif()
  list(TRANSFORM T_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/designer/)
  target_sources(${test} PRIVATE ${T_SOURCES})
  target_include_directories(${test} PRIVATE ${PROJECT_SOURCE_DIR}/designer)
  target_link_libraries(${test} PRIVATE Qt6::Designer ${T_LIBRARIES})
  target_compile_definitions(${test} PRIVATE KESH_DESIGNER_PLUGIN="$<TARGET_FILE:kesh_designer>"
    KESH_UIC="$<TARGET_FILE:Qt6::uic>" KESH_FORMS_DIR="${KESH_DESIGNER_FORMS_DIR}")
  add_dependencies(${test} kesh_designer)
endfunction()

# The plugin loaded as Designer loads it, its property sheet and menus compiled in.
kesh_designer_test(tst_designer_plugin
  SOURCES property_sheet.cpp task_menu.cpp columns_editor.cpp form_properties.cpp)
# The grid's columns dialog and the context menu that opens it.
kesh_designer_test(tst_designer_columns SOURCES columns_editor.cpp task_menu.cpp)
# The plugin inside Designer's own form editor, made without its window.
find_library(KESH_DESIGNER_COMPONENTS Qt6DesignerComponents)
kesh_designer_test(tst_designer_session LIBRARIES ${KESH_DESIGNER_COMPONENTS})
