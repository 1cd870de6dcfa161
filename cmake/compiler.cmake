# How everything is compiled, and what the library adds to it.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Werror)
# An operation is fused where the code says fma, and nowhere else.
add_compile_options(-ffp-contract=off -fno-math-errno)

if(MVK_SANITIZE)
  add_compile_options(-fsanitize=${MVK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${MVK_SANITIZE})
endif()
if(MVK_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "MVK_COVERAGE=ON needs clang: configure with -DCMAKE_CXX_COMPILER=clang++")
  endif()
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

# The ground floor: headers, and the vector unit that they are compiled for.
add_library(mvk_core INTERFACE)
target_include_directories(mvk_core INTERFACE ${PROJECT_SOURCE_DIR})
string(TOUPPER MVK_SIMD_${MVK_SIMD_BACKEND} backend)
target_compile_definitions(mvk_core INTERFACE ${backend})
if(MVK_SIMD_BACKEND STREQUAL avx2)
  target_compile_options(mvk_core INTERFACE -march=x86-64-v3)
endif()
message(STATUS "Vector unit: ${MVK_SIMD_BACKEND}")

function(mvk_library_flags target)
  set_target_properties(
    ${target} PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden
                         CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # Its own exported functions are called directly; its exported data stays one
  # with a program's copy of it.
  target_compile_options(${target} PRIVATE -fno-exceptions -fno-rtti -fno-semantic-interposition)
  target_link_options(
    ${target} PRIVATE LINKER:-Bsymbolic-functions LINKER:-z,defs LINKER:-z,relro LINKER:-z,now
    LINKER:-z,text LINKER:--as-needed)
endfunction()
