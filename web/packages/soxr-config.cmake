# soxr::soxr, its constant-rate converter in single precision, linked in.
if(TARGET soxr::soxr)
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/sources.cmake)
set(soxr ${ENDPIN_SOURCES}/libsoxr/src)

add_library(soxr STATIC
  ${soxr}/soxr.c ${soxr}/data-io.c ${soxr}/dbesi0.c ${soxr}/filter.c ${soxr}/fft4g64.c ${soxr}/cr.c
  ${soxr}/cr32.c ${CMAKE_CURRENT_LIST_DIR}/soxr/TransformTable.c)
target_include_directories(soxr SYSTEM PUBLIC ${soxr} PRIVATE ${CMAKE_CURRENT_LIST_DIR}/soxr)
target_compile_definitions(soxr PRIVATE SOXR_LIB)
add_library(soxr::soxr ALIAS soxr)
