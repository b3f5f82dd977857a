# The installed package as an adopter sees it: `cmake --install` of this build into a
# scratch prefix, then the guide's examples (docs/examples) configured with
# find_package(Kesh) against that prefix only, built, and run for a moment offscreen.
set(KESH_GUIDE_EXAMPLES ${PROJECT_SOURCE_DIR}/docs/examples)
set(KESH_GUIDE_WORK ${CMAKE_BINARY_DIR}/guide-examples)

add_test(NAME guide_in_step COMMAND ${CMAKE_COMMAND} -P ${KESH_GUIDE_EXAMPLES}/sync_guide.cmake)

add_test(NAME guide_examples_build COMMAND ${CMAKE_COMMAND}
  -DBUILD_DIR=${CMAKE_BINARY_DIR} -DEXAMPLES_DIR=${KESH_GUIDE_EXAMPLES} -DWORK_DIR=${KESH_GUIDE_WORK}
  -DGENERATOR=${CMAKE_GENERATOR} -DCXX=${CMAKE_CXX_COMPILER} -DLAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
  -DSANITIZE=${KESH_SANITIZE}
  -P ${CMAKE_CURRENT_LIST_DIR}/install_examples.cmake)
set_tests_properties(guide_examples_build PROPERTIES FIXTURES_SETUP kesh_guide_examples TIMEOUT 1500)

# Each example runs on its own: a console example must print its .out file exactly, a window
# must stay up for a moment without failing.
file(GLOB KESH_GUIDE_SOURCES CONFIGURE_DEPENDS ${KESH_GUIDE_EXAMPLES}/*.cpp)
foreach(src ${KESH_GUIDE_SOURCES})
  get_filename_component(name ${src} NAME_WE)
  add_test(NAME guide_example_${name} COMMAND ${CMAKE_COMMAND}
    -DPROGRAM=${KESH_GUIDE_WORK}/build/${name} -DEXPECTED=${KESH_GUIDE_EXAMPLES}/${name}.out
    -P ${CMAKE_CURRENT_LIST_DIR}/run_example.cmake)
  set_tests_properties(guide_example_${name} PROPERTIES FIXTURES_REQUIRED kesh_guide_examples
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8" TIMEOUT 120)
endforeach()
