# Installs the build tree BUILD into INSTALLED and moves it to MOVED.
file(REMOVE_RECURSE "${INSTALLED}" "${MOVED}")
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${INSTALLED} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${INSTALLED}" "${MOVED}")
