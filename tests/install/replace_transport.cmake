# Installs the library, builds a transport against the installed headers alone, replaces the installed transport with
# it, and lets the installed tool ping through it. Nobody listens on the port that it names.
# Needs BUILD, PREFIX, COMPILER, SOURCE and LIBDIR.
file(REMOVE_RECURSE ${PREFIX})

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE failed OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(failed)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX})
run(${COMPILER} -std=c++20 -fPIC -shared -Wall -Wextra -Werror -I ${PREFIX}/include ${SOURCE}
  -o ${PREFIX}/${LIBDIR}/libQvNetClient4.so)
run(${PREFIX}/bin/qvcall --server 127.0.0.1 --port 1 ping)
