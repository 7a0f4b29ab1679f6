# Makes the fuzz targets of SOURCE in the build tree TREE with the compiler CLANGXX.
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${TREE} -DCMAKE_CXX_COMPILER=${CLANGXX}
    -DBUILD_TESTING=OFF -DGATESCOPE_FUZZERS=ON -DCMAKE_BUILD_TYPE=None
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} --build ${TREE} --target fuzz_targets --parallel 2
  COMMAND_ERROR_IS_FATAL ANY)
