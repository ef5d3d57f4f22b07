# net-snmp, which brings no CMake package of its own: the targets NetSnmp::Library and NetSnmp::Agent, the latter
# with all that an agent needs.
find_path(NetSnmp_INCLUDE_DIR net-snmp/net-snmp-config.h)
find_library(NetSnmp_LIBRARY netsnmp)
find_library(NetSnmp_AGENT_LIBRARY netsnmpagent)
find_library(NetSnmp_MIBS_LIBRARY netsnmpmibs)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(NetSnmp
  REQUIRED_VARS NetSnmp_LIBRARY NetSnmp_AGENT_LIBRARY NetSnmp_MIBS_LIBRARY NetSnmp_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "net-snmp's headers and libraries are needed (Debian: libsnmp-dev). Where they are in \
a directory of their own, give it as CMAKE_PREFIX_PATH.")

if(NetSnmp_FOUND AND NOT TARGET NetSnmp::Library)
  add_library(NetSnmp::Library INTERFACE IMPORTED)
  target_include_directories(NetSnmp::Library INTERFACE ${NetSnmp_INCLUDE_DIR})
  target_link_libraries(NetSnmp::Library INTERFACE ${NetSnmp_LIBRARY})
  add_library(NetSnmp::Agent INTERFACE IMPORTED)
  target_link_libraries(NetSnmp::Agent INTERFACE ${NetSnmp_MIBS_LIBRARY} ${NetSnmp_AGENT_LIBRARY} NetSnmp::Library)
endif()
