# Installs the project to a fresh prefix, builds examples/user_formula outside the tree against
# it, and runs the installed qxrun with the formula's shared object.
# Arguments: -DBUILD_DIR=<project build> -DSOURCE_DIR=<project source> -DWORK_DIR=<scratch>
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/user_formula -B ${WORK_DIR}/build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=RelWithDebInfo)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${CMAKE_COMMAND} -E env TZ=Asia/Shanghai QXRUN_HOME=${WORK_DIR}/home
    ${prefix}/bin/qxrun run --data ${SOURCE_DIR}/examples/data/2006-day-001.txt
    --formula ${WORK_DIR}/build/libreversal.so:reversal --param hold=3 --out ${WORK_DIR}/out)
if(NOT last_output MATCHES "formula   reversal down=3 hold=3")
  message(FATAL_ERROR "the report does not name the user formula:\n${last_output}")
endif()
file(READ ${WORK_DIR}/out/report.json report)
string(JSON trades GET "${report}" figures trades)
if(trades LESS 1)
  message(FATAL_ERROR "the user formula traded nothing")
endif()
message(STATUS "user formula: ${trades} trades")
