# Each folder of src/ is one static library that sees only the folders it may use, and what those use.
#
# Headers are included by folder ("TIN/TINPoints.h"). A library's include root holds just a link to its
# own folder, so that the header of a folder that is not declared under USES is not found.

# corvane_library(FOLDER [USES folder...] [LINKS public-target...] [PRIVATE_LINKS target...])
function(corvane_library folder)
  cmake_parse_arguments(ARG "" "" "USES;LINKS;PRIVATE_LINKS" ${ARGN})
  corvane_target_name(target ${folder})

  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")  # a program's own, not the library's
  if(sources)
    set(kind STATIC)
    set(scope PUBLIC)
  else()
    set(kind INTERFACE)
    set(scope INTERFACE)
  endif()
  add_library(${target} ${kind} ${sources})

  string(REGEX MATCH "^[^/]+" top ${folder})
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${top} ${root}/${top} SYMBOLIC)
  target_include_directories(${target} ${scope} ${root})

  foreach(used IN LISTS ARG_USES)
    corvane_target_name(used_target ${used})
    target_link_libraries(${target} ${scope} ${used_target})
  endforeach()
  target_link_libraries(${target} ${scope} ${ARG_LINKS})
  if(ARG_PRIVATE_LINKS)
    target_link_libraries(${target} PRIVATE ${ARG_PRIVATE_LINKS})
  endif()
endfunction()

# corvane_target_name(VARIABLE FOLDER): "OpenGL/Stereo_2Cursor" gives "corvane_OpenGL_Stereo_2Cursor"
function(corvane_target_name variable folder)
  string(REPLACE "/" "_" name ${folder})
  set(${variable} corvane_${name} PARENT_SCOPE)
endfunction()

# corvane_test(FOLDER [USES folder...] [LINKS target...]): tests/FOLDER/*.cpp as one test program
function(corvane_test folder)
  cmake_parse_arguments(ARG "" "" "USES;LINKS" ${ARGN})
  string(REPLACE "/" "_" name ${folder})
  set(target test_${name})

  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${target} ${sources})
  foreach(used IN LISTS ARG_USES)
    corvane_target_name(used_target ${used})
    target_link_libraries(${target} PRIVATE ${used_target})
  endforeach()
  target_link_libraries(${target} PRIVATE corvane_test_support GTest::gmock GTest::gtest_main ${ARG_LINKS})
  target_compile_definitions(${target} PRIVATE CORVANE_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  gtest_discover_tests(${target} TEST_PREFIX "${folder}." DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
