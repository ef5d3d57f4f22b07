# The module's dynamic symbols: it needs nothing but the host's services, net-snmp, zlib and the runtimes, and
# exports nothing mangled.
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

if(defined MATCHES "_Z[A-Za-z0-9_]+")
  message(SEND_ERROR "exported by the module under a mangled name: ${CMAKE_MATCH_0}")
endif()
foreach(entry mod_get_info slot_initializer slot_deinitializer cleanup_lib get_sm_version init_common
        tarnPortsUtilizationInterval_registration)
  if(NOT defined MATCHES " ${entry}\n")
    message(SEND_ERROR "not exported by the module: ${entry}")
  endif()
endforeach()
