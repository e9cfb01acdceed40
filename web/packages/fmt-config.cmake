# fmt::fmt from the headers alone. Only they are taken from the machine's include folder: the rest of
# it belongs to another processor.
if(TARGET fmt::fmt)
  return()
endif()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK /usr/include/fmt ${CMAKE_BINARY_DIR}/include/fmt SYMBOLIC)

add_library(fmt INTERFACE)
target_include_directories(fmt SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)
# Without the locale's separator, which we never want, the module is a quarter smaller.
target_compile_definitions(fmt INTERFACE FMT_HEADER_ONLY FMT_STATIC_THOUSANDS_SEPARATOR=1)
add_library(fmt::fmt ALIAS fmt)
