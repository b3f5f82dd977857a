# cmake -P script of the test guide_examples_build (see install_tests.cmake).
set(PREFIX ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${PREFIX})

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}")
  endif()
  message(STATUS "${what}: done")
endfunction()

run("cmake --install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})

set(options -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${PREFIX}
  # Only the scratch prefix may provide Kesh, never an installation elsewhere on the machine.
  -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF)
if(LAUNCHER)
  list(APPEND options -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
endif()
if(SANITIZE)
  # A library built with the sanitizers needs their run-time first in every program using it.
  set(flags "-fsanitize=address,undefined -fno-omit-frame-pointer")
  list(APPEND options "-DCMAKE_CXX_FLAGS=${flags}" "-DCMAKE_EXE_LINKER_FLAGS=${flags}")
endif()
run("configure the examples" ${CMAKE_COMMAND} -S ${EXAMPLES_DIR} -B ${WORK_DIR}/build ${options})

# find_package(Kesh) must have taken the package just installed.
file(STRINGS ${WORK_DIR}/build/CMakeCache.txt found REGEX "^Kesh_DIR:")
if(NOT found MATCHES "=${PREFIX}/")
  message(FATAL_ERROR "find_package(Kesh) did not take the scratch prefix: ${found}")
endif()
run("build the examples" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
