# One set of compiler settings for every target and every build type.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(CORVANE_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)

add_compile_options(-Wall -Wextra -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # False alarms of this compiler on std::string + text, and on std::variant under the sanitizers.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  if(CORVANE_SANITIZE)
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
# Results are compared strictly and published: the same bits on every machine and in every build type.
add_compile_options(-ffp-contract=off -fno-fast-math)

if(CORVANE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

find_program(CORVANE_CCACHE ccache)
if(CORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVANE_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${CORVANE_CCACHE})
endif()

find_program(CORVANE_MOLD mold)
if(CORVANE_MOLD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=mold)
endif()
