# Where the sources of the libraries lie; fetched at the first configuration.
set(ENDPIN_SOURCES ${CMAKE_BINARY_DIR}/sources)
execute_process(
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/fetch.sh ${ENDPIN_SOURCES}
  COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/fetch.sh)
enable_language(C)
