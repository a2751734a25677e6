# Fails unless a shared library offers every name of a list. Needs LIBRARY, NAMES (the list's file), LISTER (the command
# that tells what a library offers, with its options) and FILTER (what makes readable names of it).
execute_process(COMMAND ${LISTER} ${LIBRARY} COMMAND ${FILTER} OUTPUT_VARIABLE offered COMMAND_ERROR_IS_FATAL ANY)
# Each behind its address or number, at the end of its line.
string(REGEX REPLACE "\r?\n" "|" offered "${offered}")
file(STRINGS ${NAMES} names)
set(missing "")
foreach(name IN LISTS names)
  string(FIND "${offered}" " ${name}|" found)
  if(found EQUAL -1)
    string(APPEND missing "\n  ${name}")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "${LIBRARY} lacks:${missing}")
endif()
