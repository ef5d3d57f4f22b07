# A built file: relocations are read-only before the program runs, the stack is guarded and not executable, and calls
# of the C library check their buffers.
execute_process(COMMAND readelf --wide --dynamic --program-headers --dyn-syms ${FILE}
  OUTPUT_VARIABLE elf COMMAND_ERROR_IS_FATAL ANY)
set(parts "GNU_RELRO" "BIND_NOW|FLAGS_1[^\n]*NOW" "__stack_chk_fail"
  "GNU_STACK +0x0+ 0x0+ 0x0+ 0x0+ 0x0+ RW +0x")
if(FORTIFIED)
  list(APPEND parts "__[a-z]+_chk@")
endif()
foreach(part IN LISTS parts)
  if(NOT elf MATCHES "${part}")
    message(SEND_ERROR "${FILE}: lacks ${part}")
  endif()
endforeach()
