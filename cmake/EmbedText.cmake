# Writes text files into one C++ source as string constants.
# cmake -DOUT=FILE.cpp -DHEADER=DECLARATIONS.h -DTEXTS=NAME=FILE,NAME=FILE,... -P EmbedText.cmake
string(REPLACE "," ";" TEXTS "${TEXTS}")
set(code "// Made by cmake/EmbedText.cmake.\n#include \"${HEADER}\"\n")
foreach(text IN LISTS TEXTS)
  string(REGEX MATCH "^([^=]+)=(.+)$" pair "${text}")
  if(NOT EXISTS "${CMAKE_MATCH_2}")
    message(FATAL_ERROR "${text}: no such file")
  endif()
  set(name ${CMAKE_MATCH_1})
  file(READ "${CMAKE_MATCH_2}" content)
  string(APPEND code "const char* const ${name} = R\"glsl(${content})glsl\";\n")
endforeach()
file(WRITE "${OUT}" "${code}")
