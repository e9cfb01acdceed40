# kissfft::kissfft in single precision, linked in.
if(TARGET kissfft::kissfft)
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/sources.cmake)
set(kissfft ${ENDPIN_SOURCES}/kissfft)

# Its headers are included by the folder that they are installed in.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${kissfft} ${CMAKE_BINARY_DIR}/include/kissfft SYMBOLIC)

add_library(kissfft STATIC ${kissfft}/kiss_fft.c ${kissfft}/kiss_fftr.c)
target_include_directories(kissfft SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/include)
add_library(kissfft::kissfft ALIAS kissfft)
