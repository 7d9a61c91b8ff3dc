# The sweep across two MPI ranks writes the same results, point for point, as the threaded
# sweep; more ranks than points are refused with exit code 2 and no files.
#   cmake -DQXRUN=... -DMPIRUN=... -DBARS=... -DWORK_DIR=... -P MpiSweep.cmake
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
set(sweep sweep --data ${BARS} --formula ma_cross --param fast=5:50:5 --param slow=20:200:20
          --constraint "fast<slow" --random 40 --seed 3 --quiet)
set(ranks ${MPIRUN} -np 2 --allow-run-as-root --oversubscribe)

execute_process(COMMAND ${QXRUN} ${sweep} --jobs 2 --out ${WORK_DIR}/threads
                RESULT_VARIABLE threads)
execute_process(COMMAND ${ranks} ${QXRUN} ${sweep} --out ${WORK_DIR}/ranks
                RESULT_VARIABLE mpi)
if(NOT threads EQUAL 0 OR NOT mpi EQUAL 0)
  message(FATAL_ERROR "threaded sweep exited with ${threads}, MPI sweep with ${mpi}")
endif()
foreach(name results.csv results.json)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/threads/${name}
                          ${WORK_DIR}/ranks/${name} RESULT_VARIABLE differ)
  if(NOT differ EQUAL 0)
    message(FATAL_ERROR "${name} of the MPI sweep differs from the threaded sweep's")
  endif()
endforeach()
file(STRINGS ${WORK_DIR}/ranks/results.csv rows)
list(LENGTH rows count)
if(NOT count EQUAL 41)
  message(FATAL_ERROR "expected 40 points and a header, found ${count} rows")
endif()

# Two threads on each rank, and the counter reached by messages over TCP as across machines
# (where this Open MPI has its message-based one-sided component): the same rows.
execute_process(COMMAND ompi_info OUTPUT_VARIABLE components ERROR_QUIET)
if(components MATCHES "MCA osc: pt2pt")
  execute_process(COMMAND ${ranks} --mca pml ob1 --mca btl self,tcp --mca osc pt2pt ${QXRUN}
                          ${sweep} --jobs 2 --out ${WORK_DIR}/tcp-ranks
                  RESULT_VARIABLE mpi)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/threads/results.csv
                          ${WORK_DIR}/tcp-ranks/results.csv RESULT_VARIABLE differ)
  if(NOT mpi EQUAL 0 OR NOT differ EQUAL 0)
    message(FATAL_ERROR "MPI sweep over TCP: exit ${mpi}, results.csv differs: ${differ}")
  endif()
endif()

# Walk-forward across the ranks: the same windows and curves.
set(walk --walk-forward train=3y,test=1y --capital 100)
execute_process(COMMAND ${QXRUN} ${sweep} ${walk} --out ${WORK_DIR}/walk-threads
                RESULT_VARIABLE threads)
execute_process(COMMAND ${ranks} ${QXRUN} ${sweep} ${walk} --out ${WORK_DIR}/walk-ranks
                RESULT_VARIABLE mpi)
foreach(name walkforward.csv equity.csv)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/walk-threads/${name}
                          ${WORK_DIR}/walk-ranks/${name} RESULT_VARIABLE differ)
  if(NOT differ EQUAL 0)
    message(FATAL_ERROR "${name} of the MPI walk-forward differs from the threaded one's")
  endif()
endforeach()

# Three ranks for two points.
execute_process(COMMAND ${MPIRUN} -np 3 --allow-run-as-root --oversubscribe ${QXRUN} sweep
                        --data ${BARS} --formula ma_cross --param fast=5:10:5
                        --out ${WORK_DIR}/too-many
                RESULT_VARIABLE code ERROR_VARIABLE err OUTPUT_QUIET)
if(NOT code EQUAL 2 OR NOT err MATCHES "qxrun: mpirun: 3 ranks for 2 points")
  message(FATAL_ERROR "more ranks than points: exit ${code}, said: ${err}")
endif()
if(EXISTS ${WORK_DIR}/too-many)
  message(FATAL_ERROR "more ranks than points left ${WORK_DIR}/too-many")
endif()
