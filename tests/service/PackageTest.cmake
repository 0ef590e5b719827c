# Installs the library that this build made, then builds and runs a project that knows nothing but the package.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
run(${CMAKE_COMMAND} --install "${BUILT}" --prefix "${WORK}/prefix" --component caldra_development)
set(flags "${FLAGS}")
if(SANITIZE)
  string(APPEND flags " -fsanitize=${SANITIZE}")
endif()
run(${CMAKE_COMMAND} -S "${OUTSIDE}" -B "${WORK}/build" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${WORK}/prefix"
  "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${flags}")
run(${CMAKE_COMMAND} --build "${WORK}/build")
run("${WORK}/build/outside")
