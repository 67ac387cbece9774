# nru_embed_glsl(TARGET HEADER NAME=FILE...): the files of the folder's glsl/ become string constants, which
# HEADER declares, in a source that is compiled into TARGET.
function(nru_embed_glsl target header)
  set(texts)
  set(files)
  foreach(pair IN LISTS ARGN)
    string(REPLACE "=" "=${CMAKE_CURRENT_SOURCE_DIR}/glsl/" text ${pair})
    string(REGEX REPLACE "^[^=]*=" "" file ${text})
    list(APPEND texts ${text})
    list(APPEND files ${file})
  endforeach()
  list(JOIN texts "," texts)
  get_filename_component(name ${header} NAME_WE)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  set(script ${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake)
  add_custom_command(
    OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -DOUT=${source} -DHEADER=${header} -DTEXTS=${texts} -P ${script}
    DEPENDS ${files} ${script}
    COMMENT "Embedding the GLSL of ${name}")
  add_custom_target(embed_${name} DEPENDS ${source})
  target_sources(${target} PRIVATE ${source})
  add_dependencies(${target} embed_${name})
endfunction()
