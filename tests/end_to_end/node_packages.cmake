# Installs the packages of the package.json FROM in the directory TO, unless they are there.
file(READ ${FROM} wanted)
if(EXISTS ${TO}/package.json AND EXISTS ${TO}/node_modules/net-snmp/package.json)
  file(READ ${TO}/package.json there)
  if(there STREQUAL wanted)
    return()
  endif()
endif()
file(MAKE_DIRECTORY ${TO})
configure_file(${FROM} ${TO}/package.json COPYONLY)
execute_process(COMMAND npm install --no-package-lock --no-audit --no-fund
  WORKING_DIRECTORY ${TO} COMMAND_ERROR_IS_FATAL ANY)
