# A room is a folder whose sources see, of the whole project, the room itself and the rooms that it uses: their
# include path is a folder of links to these, so that any other include is not found. What a room's headers
# include must be among them too.
#
#   tarn_room(module/store USES module/common wire include)
#
# makes the object library tarn_module_store of the room's sources. tests/check_rooms.py reads these lines.
function(tarn_room room)
  cmake_parse_arguments(PARSE_ARGV 1 ROOM "" "" "USES")
  string(REPLACE / _ name ${room})
  set(path ${CMAKE_BINARY_DIR}/rooms/${name})
  file(REMOVE_RECURSE ${path})
  foreach(seen IN ITEMS ${room} ${ROOM_USES})
    set(source ${CMAKE_SOURCE_DIR}/${seen})
    set(link ${path}/${seen})
    if(seen STREQUAL "include")
      set(source ${source}/tarn)
      set(link ${path}/tarn)
    endif()
    get_filename_component(folder ${link} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    file(CREATE_LINK ${source} ${link} SYMBOLIC)
  endforeach()

  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${room}/*.cpp)
  add_library(tarn_${name} OBJECT ${sources})
  target_include_directories(tarn_${name} PRIVATE ${path})
  target_compile_definitions(tarn_${name} PRIVATE $<TARGET_PROPERTY:tarn_options,INTERFACE_COMPILE_DEFINITIONS>)
  # Paths are noted as they are in the sources.
  target_compile_options(tarn_${name} PRIVATE $<TARGET_PROPERTY:tarn_options,INTERFACE_COMPILE_OPTIONS>
    -fmacro-prefix-map=${path}/= -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=)
endfunction()
