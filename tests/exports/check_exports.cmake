# Fails unless a shared library exports every name of a list and, on ELF systems, no name that is neither in the list
# nor matches MEMBERS. Needs LIBRARY, NAMES (the file with the list), LISTER (the command that lists the exports of a
# library, with its options) and FILTER (the command that demangles them).
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${LISTER} ${LIBRARY} COMMAND ${FILTER} OUTPUT_VARIABLE offered COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${NAMES} names)

# In each line, the name comes last, after its address or number.
string(REGEX REPLACE "\r?\n" "|" lines "${offered}")
set(missing "")
foreach(name IN LISTS names)
  string(FIND "${lines}" " ${name}|" found)
  if(found EQUAL -1)
    string(APPEND missing "\n  ${name}")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "${LIBRARY} lacks:${missing}")
endif()

# An address and a letter for the kind, as nm writes them. Sanitizers have names of their own.
string(REGEX MATCHALL "[0-9a-f]+ [A-Za-z] [^\n]+" symbols "${offered}")
set(leaked "")
foreach(symbol IN LISTS symbols)
  string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" name "${symbol}")
  if(name IN_LIST names OR name MATCHES "^(__odr_asan|__asan|__start_|__stop_)" OR
      (MEMBERS AND name MATCHES "^(${MEMBERS})$"))
    continue()
  endif()
  string(APPEND leaked "\n  ${name}")
endforeach()
if(leaked)
  message(FATAL_ERROR "${LIBRARY} offers what no host should see:${leaked}")
endif()
