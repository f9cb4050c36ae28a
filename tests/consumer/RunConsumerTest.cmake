# cmake -P script: install Ostrel into a scratch prefix, configure and build a project against
# it, and run RUN_TARGET from it when one is named.
file(REMOVE_RECURSE ${SCRATCH_DIR})
set(prefix ${SCRATCH_DIR}/prefix)
set(build ${SCRATCH_DIR}/build)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${OSTREL_BUILD_DIR} --prefix ${prefix})
if(CHECK_EXPORTS AND EXISTS ${prefix}/lib/libostrel.so)
  # Every flavour: libostrel, libostrel-core, libostrel-quick.
  file(GLOB libraries ${prefix}/lib/libostrel*.so.*.*.*)
  foreach(library ${libraries})
    run(${CHECK_EXPORTS} ${library})
  endforeach()
endif()
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${build} -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Debug -DCMAKE_INSTALL_RPATH=${prefix}/lib
    -DCMAKE_BUILD_RPATH=${prefix}/lib
    "-DCMAKE_CXX_FLAGS=${CONSUMER_CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_LINKER_FLAGS}")
run(${CMAKE_COMMAND} --build ${build})
if(RUN_TARGET)
  run(${build}/${RUN_TARGET})
endif()
if(FORBIDDEN_LIBRARY)
  execute_process(COMMAND ldd ${build}/${RUN_TARGET} OUTPUT_VARIABLE libraries RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "ldd failed on ${RUN_TARGET}")
  endif()
  if(libraries MATCHES "${FORBIDDEN_LIBRARY}")
    message(FATAL_ERROR "${RUN_TARGET} loads ${FORBIDDEN_LIBRARY}:\n${libraries}")
  endif()
endif()
