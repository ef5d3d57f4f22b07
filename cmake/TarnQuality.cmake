# `format-check` and `tidy`, over the project's own sources.
find_program(CLANG_FORMAT clang-format)
find_program(RUN_CLANG_TIDY NAMES run-clang-tidy run-clang-tidy-14)
file(GLOB_RECURSE TARN_SOURCES CONFIGURE_DEPENDS
  include/*.h wire/*.h module/*.h module/*.cpp host/*.h host/*.cpp chassis/*.h chassis/*.cpp
  ctl/*.h ctl/*.cpp tools/*.cpp tests/*.h tests/*.cpp bench/*.h bench/*.cpp)

if(CLANG_FORMAT)
  add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${TARN_SOURCES}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
  add_custom_target(format-check COMMAND ${CLANG_FORMAT} --dry-run -Werror ${TARN_SOURCES}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM)
endif()
if(RUN_CLANG_TIDY)
  add_custom_target(tidy
    COMMAND ${RUN_CLANG_TIDY} -quiet -p ${CMAKE_BINARY_DIR} "^${CMAKE_SOURCE_DIR}/(module|host|chassis|ctl|tools)/.*\\.cpp$"
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM)
endif()
