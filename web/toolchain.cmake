# Compiles for WebAssembly with Debian's clang, its C library and its C++ library: no other SDK.
set(ENDPIN_WEB ON)
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)

foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET wasm32-wasi)
  # The same bits as everywhere: no contraction into fused operations.
  set(CMAKE_${language}_FLAGS_INIT "-ffp-contract=off")
  set(CMAKE_${language}_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "")
endforeach()
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_AR llvm-ar-14)
set(CMAKE_RANLIB llvm-ranlib-14)
# What is thrown ends the program, as there is nobody who could catch it in the page.
string(APPEND CMAKE_CXX_FLAGS_INIT
  " -fno-exceptions -fno-rtti -isystem ${CMAKE_CURRENT_LIST_DIR}/include")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-mexec-model=reactor -Wl,--strip-all")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# The libraries that find_package finds, from their sources.
foreach(package kissfft fmt soxr)
  set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/packages)
endforeach()
