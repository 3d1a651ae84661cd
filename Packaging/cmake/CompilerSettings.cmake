# Compiler and linker settings shared by every target: what is here decides the numbers
# the program computes and how strictly it is checked.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
  add_link_options(-fuse-ld=mold)
endif()

# Formulas are evaluated as written, on every machine alike: no fused multiply-add, no fast-math.
add_compile_options(-ffp-contract=off)

add_library(ombrelWarnings INTERFACE)
target_compile_options(ombrelWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow=local -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-align -Wimplicit-fallthrough
  $<$<BOOL:${OMBREL_WARNINGS_AS_ERRORS}>:-Werror>)

if(OMBREL_SANITIZERS)
  add_compile_options(-fsanitize=${OMBREL_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${OMBREL_SANITIZERS})
endif()
