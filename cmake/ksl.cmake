# Two rules serve every folder: ksl_library() and ksl_tests(). A folder's sources are found by name, so a
# new file needs no edit here.

# Three builds make up the test run, and compiling is most of it. Lines in stack traces are all that they need of
# debug information, and the tests' own code, unlike the product's, isn't optimised.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-g1")

add_library(ksl_options INTERFACE)
target_include_directories(ksl_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(ksl_options INTERFACE -Wall -Wextra -Wpedantic $<$<BOOL:${KSL_WERROR}>:-Werror>)
if(KSL_SANITIZE)
  target_compile_options(ksl_options INTERFACE
    -fsanitize=${KSL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ksl_options INTERFACE -fsanitize=${KSL_SANITIZE})
endif()

# ksl_library(NAME [DEPENDS target...] [EXCLUDE file...])
# A static library of every .cpp file below the calling folder.
function(ksl_library name)
  cmake_parse_arguments(arg "" "" "DEPENDS;EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(excluded IN LISTS arg_EXCLUDE)
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${excluded})
  endforeach()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC ksl_options ${arg_DEPENDS})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ksl_options ${arg_DEPENDS})
  endif()
endfunction()

# ksl_tests(NAME DEPENDS target...)
# One GoogleTest program of every .cpp file in tests/NAME; each test becomes a test of ctest.
function(ksl_tests name)
  cmake_parse_arguments(arg "" "" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  target_link_libraries(${name}_tests PRIVATE ksl_options ${arg_DEPENDS} ksl_test_paths
    GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_options(${name}_tests PRIVATE -O0)
  # One precompiled header for all test programs: the first of them makes it.
  if(NOT DEFINED KSL_TEST_HEADERS)
    set(KSL_TEST_HEADERS ${name}_tests PARENT_SCOPE)
    target_precompile_headers(${name}_tests PRIVATE
      <gtest/gtest.h> <gmock/gmock.h> <algorithm> <fstream> <functional> <map> <memory> <sstream> <string> <vector>)
  else()
    target_precompile_headers(${name}_tests REUSE_FROM ${KSL_TEST_HEADERS})
  endif()
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
