# What every target of the project is built with.
add_library(tarn_options INTERFACE)
target_include_directories(tarn_options INTERFACE ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
target_compile_definitions(tarn_options INTERFACE TARN_VERSION="${PROJECT_VERSION}")
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion
  -Wold-style-cast -Wcast-align -Wformat=2 -Wnon-virtual-dtor)
# Overflows of the stack end the program, and nothing that the loader has resolved can be written over.
target_compile_options(tarn_options INTERFACE -fstack-protector-strong)
target_link_options(tarn_options INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(TARN_SANITIZE)
  target_compile_options(tarn_options INTERFACE
    -fsanitize=${TARN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarn_options INTERFACE -fsanitize=${TARN_SANITIZE})
else()
  # The C library's checks need an optimising compiler and are in the sanitizers' way. What its warnings then ask for
  # (looking at the result of `system`) is decided where the call stands.
  target_compile_options(tarn_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
