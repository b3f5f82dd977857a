# Forms made in Designer, compiled by uic into the forms test.
set_target_properties(tst_designer_forms PROPERTIES AUTOUIC ON
  AUTOUIC_SEARCH_PATHS ${CMAKE_CURRENT_LIST_DIR}/forms)
target_sources(tst_designer_forms PRIVATE ${CMAKE_CURRENT_LIST_DIR}/forms/customer_card.ui)

# The plugin itself, loaded as Designer loads it; its property sheet is compiled in too.
if(TARGET kesh_designer)
  find_package(Qt6 REQUIRED COMPONENTS Designer)
  target_sources(tst_designer_plugin PRIVATE ${PROJECT_SOURCE_DIR}/designer/property_sheet.cpp
    ${PROJECT_SOURCE_DIR}/designer/task_menu.cpp ${PROJECT_SOURCE_DIR}/designer/columns_editor.cpp
    ${PROJECT_SOURCE_DIR}/designer/form_properties.cpp)
  target_include_directories(tst_designer_plugin PRIVATE ${PROJECT_SOURCE_DIR}/designer)
  target_link_libraries(tst_designer_plugin PRIVATE Qt6::Designer)
  target_compile_definitions(tst_designer_plugin PRIVATE
    KESH_DESIGNER_PLUGIN="$<TARGET_FILE:kesh_designer>" KESH_UIC="$<TARGET_FILE:Qt6::uic>")
  add_dependencies(tst_designer_plugin kesh_designer)
else()
  set_target_properties(tst_designer_plugin PROPERTIES EXCLUDE_FROM_ALL ON)
  set_tests_properties(tst_designer_plugin PROPERTIES DISABLED ON)
endif()

# The grid's columns dialog and the context menu that opens it, compiled in.
if(TARGET kesh_designer)
  target_sources(tst_designer_columns PRIVATE ${PROJECT_SOURCE_DIR}/designer/columns_editor.cpp
    ${PROJECT_SOURCE_DIR}/designer/task_menu.cpp)
  target_include_directories(tst_designer_columns PRIVATE ${PROJECT_SOURCE_DIR}/designer)
  target_link_libraries(tst_designer_columns PRIVATE Qt6::Designer)
else()
  set_target_properties(tst_designer_columns PROPERTIES EXCLUDE_FROM_ALL ON)
  set_tests_properties(tst_designer_columns PROPERTIES DISABLED ON)
endif()

# The plugin inside Designer's own form editor, made without its window.
find_library(KESH_DESIGNER_COMPONENTS Qt6DesignerComponents)
if(TARGET kesh_designer AND KESH_DESIGNER_COMPONENTS)
  target_include_directories(tst_designer_session PRIVATE ${PROJECT_SOURCE_DIR}/designer)
  target_link_libraries(tst_designer_session PRIVATE Qt6::Designer ${KESH_DESIGNER_COMPONENTS})
  target_compile_definitions(tst_designer_session PRIVATE KESH_DESIGNER_PLUGIN="$<TARGET_FILE:kesh_designer>"
    KESH_UIC="$<TARGET_FILE:Qt6::uic>" KESH_FORMS_DIR="${CMAKE_CURRENT_LIST_DIR}/forms")
  add_dependencies(tst_designer_session kesh_designer)
else()
  set_target_properties(tst_designer_session PROPERTIES EXCLUDE_FROM_ALL ON)
  set_tests_properties(tst_designer_session PROPERTIES DISABLED ON)
endif()
