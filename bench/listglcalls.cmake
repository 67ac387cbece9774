# Writes a line for each OpenGL entry point that LIBRARY imports: cmake -DNM= -DLIBRARY= -DOUTPUT= -P.
execute_process(COMMAND ${NM} -D --undefined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "epoxy_gl[A-Z][A-Za-z0-9_]*" names "${symbols}")
list(REMOVE_DUPLICATES names)
set(lines "")
foreach(name ${names})
  string(APPEND lines "(void)Watched<&${name}>();\n")
endforeach()
file(WRITE ${OUTPUT} "${lines}")
