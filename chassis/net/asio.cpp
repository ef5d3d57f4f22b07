// Asio's own sources, compiled once.
#include <asio/impl/src.hpp>
