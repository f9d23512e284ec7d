# Test programs. THREADS marks tests in which threads meet: the preset `tsan` builds and runs no
# others. OWN_SYSTEM marks tests that bring functions of the system of their own, which the thread
# sanitizer calls before it is set up: `tsan-all` leaves them out too. ENVIRONMENT NAME=VALUE is what
# they run with.
option(HVK3_SHARDS "Run the tests of a program in a few processes" OFF)
find_package(GTest REQUIRED)
include(GoogleTest)

# The headers that nearly every test includes, compiled once for all of them. The preset `clang`
# compiles without, so that a file that leans on them is found.
# The product is optimised, its tests are compiled quickly: that halves the time of a whole build.
set(HVK3_TEST_OPTIONS -O0 -g1)
set(HVK3_COMMON_TEST_HEADERS
    <gmock/gmock.h>
    <gtest/gtest.h>
    <algorithm>
    <array>
    <atomic>
    <chrono>
    <filesystem>
    <fstream>
    <functional>
    <future>
    <map>
    <memory>
    <mutex>
    <optional>
    <random>
    <sstream>
    <string>
    <thread>
    <vector>)
file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/common_headers.cpp" CONTENT "int main() {}\n")

# hvk3_test_headers(NAME HEADER...): a program that only brings these headers, compiled behind the
# common ones, to tests with HEADERS_OF NAME.
function(hvk3_test_headers name)
  add_executable(${name} "${CMAKE_BINARY_DIR}/tests/common_headers.cpp")
  target_compile_options(${name} PRIVATE ${HVK3_TEST_OPTIONS})
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest)
  target_precompile_headers(${name} PRIVATE ${HVK3_COMMON_TEST_HEADERS} ${ARGN})
endfunction()

hvk3_test_headers(hvk3_test_common_headers)

# hvk3_tests(NAME [THREADS | OWN_SYSTEM] [ENVIRONMENT NAME=VALUE] [HEADERS_OF TARGET] SOURCE...):
# tests that link nothing of the tree.
function(hvk3_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "THREADS;OWN_SYSTEM" "ENVIRONMENT;HEADERS_OF" "")
  if(NOT arg_HEADERS_OF)
    set(arg_HEADERS_OF hvk3_test_common_headers)
  endif()
  if(arg_THREADS)
    set(label threads)
  elseif(arg_OWN_SYSTEM)
    set(label own-system)
  else()
    set(label plain)
  endif()
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  if((HVK3_THREADS_ONLY AND NOT arg_THREADS)
     OR (HVK3_SANITIZE STREQUAL "thread" AND arg_OWN_SYSTEM))
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests"
                                             "${PROJECT_SOURCE_DIR}/include")
  target_compile_options(${name} PRIVATE ${HVK3_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM ${arg_HEADERS_OF})
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main ${CMAKE_DL_LIBS})
  if(HVK3_SANITIZE OR HVK3_SHARDS)
    hvk3_shards(${name} ${label} "${arg_ENVIRONMENT}")
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
                         PROPERTIES TIMEOUT 120 LABELS ${label} ENVIRONMENT "${arg_ENVIRONMENT}")
  endif()
endfunction()

# A program's tests in a few processes: with a sanitizer, or counters to write, it takes longer to
# start and end a program than to run one of its tests, and there every test has some thousand
# neighbours to disturb.
function(hvk3_shards name label environment)
  set(count 4)
  foreach(number RANGE 1 ${count})
    math(EXPR index "${number} - 1")
    add_test(NAME ${name}.${number}Of${count} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(
      ${name}.${number}Of${count}
      PROPERTIES TIMEOUT 600 LABELS ${label} ENVIRONMENT
                 "GTEST_TOTAL_SHARDS=${count};GTEST_SHARD_INDEX=${index};${environment}")
  endforeach()
endfunction()

# The same with the simulator's bench, and a dlopen of the test's own: see
# tests/support/closed_libraries.h.
function(hvk3_bench_tests name)
  hvk3_tests(${name} ${ARGN} "${PROJECT_SOURCE_DIR}/tests/support/closed_libraries.cpp")
  target_link_libraries(${name} PRIVATE ostrevan-simulator)
  target_compile_definitions(${name} PRIVATE "HVK3_SIMULATOR_DIR=\"${CMAKE_BINARY_DIR}/simulator\"")
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  add_dependencies(${name} hvk3_simulator)
endfunction()

# Unit tests link the plug-in's object library.
function(hvk3_unit_tests name)
  hvk3_tests(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE hvk3_objects)
endfunction()

function(hvk3_simulator_tests name)
  hvk3_bench_tests(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE hvk3_objects)
endfunction()
