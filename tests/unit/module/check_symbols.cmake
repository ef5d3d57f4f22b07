# The module's dynamic symbols: it needs nothing but the host's services, net-snmp, zlib and the runtimes, and
# exports the names of its list, no more and no fewer.
execute_process(COMMAND nm -D --undefined-only ${MODULE} OUTPUT_VARIABLE undefined COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND nm -D --defined-only ${MODULE} OUTPUT_VARIABLE defined COMMAND_ERROR_IS_FATAL ANY)

file(READ ${SERVICES} services)
string(REGEX MATCHALL "[A-Za-z_0-9]+\\(" services "${services}")

string(REPLACE "\n" ";" undefined "${undefined}")
foreach(line IN LISTS undefined)
  if(line STREQUAL "" OR line MATCHES "@" OR line MATCHES " w " OR line MATCHES "__(asan|ubsan|tsan)|__gcov")
    continue()  # versioned: the C and C++ runtimes, zlib; weak; a sanitizer's
  endif()
  string(REGEX REPLACE ".* " "" symbol "${line}")
  list(FIND services "${symbol}(" service)
  if(service EQUAL -1 AND NOT symbol MATCHES "^(netsnmp_|snmp_|inflate|crc32)")
    message(SEND_ERROR "undefined in the module and nobody's service: ${symbol}")
  endif()
endforeach()

set(iterator init_%_handlers %_next_index %_module_handler)
set(nextgen init_%_handlers %_get_next_entry %_table_handler_nextgen)
set(counters ${nextgen} append_index_% get_colnum_from_oid_% get_serial_from_oid_% get_counter_id_from_oid_%
  get_exact_state_index_2_% get_first_available_state_index_%)
set(scalar handle_% %_registration)
file(STRINGS ${EXPORTS} lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  if(line MATCHES "^([a-z]+) (.+)$")
    string(REPLACE "%" "${CMAKE_MATCH_2}" names "${${CMAKE_MATCH_1}}")
    list(APPEND listed ${names})
  else()
    list(APPEND listed ${line})
  endif()
endforeach()

string(REGEX REPLACE "[^\n]* " "" exported "${defined}")
string(REGEX MATCHALL "[^\n]+" exported "${exported}")
set(unlisted ${exported})
list(REMOVE_ITEM unlisted ${listed})
list(REMOVE_ITEM listed ${exported})
if(unlisted OR listed)
  message(SEND_ERROR "exported by the module, not in its list: ${unlisted}\nin its list, not exported: ${listed}")
endif()
