# Asio without Boost, headers only: the target Asio::Asio.
find_path(Asio_INCLUDE_DIR asio.hpp)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Asio REQUIRED_VARS Asio_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "Asio's headers are needed (Debian: libasio-dev).")
if(Asio_FOUND AND NOT TARGET Asio::Asio)
  add_library(Asio::Asio INTERFACE IMPORTED)
  target_include_directories(Asio::Asio INTERFACE ${Asio_INCLUDE_DIR})
endif()
