# Fails when LIBRARY defines any of the codec's bip_* functions (local symbols included).
execute_process(COMMAND nm -C ${LIBRARY} OUTPUT_VARIABLE symbols RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[0-9a-f]+ [TtDdBb] bip_[a-z_]+" copies "${symbols}")
if(copies)
  message(FATAL_ERROR "second copy of the port state in ${LIBRARY}: ${copies}")
endif()
