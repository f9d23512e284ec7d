# Unit tests: hvk3_unit_tests(NAME [THREADS] SOURCE...) links the plug-in's object library. THREADS
# marks tests in which threads meet: they alone are built for and run under the thread sanitizer.
find_package(GTest REQUIRED)
include(GoogleTest)

function(hvk3_unit_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "THREADS" "" "")
  if(arg_THREADS)
    set(label threads)
  else()
    set(label plain)
  endif()
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  if(HVK3_SANITIZE STREQUAL "thread" AND NOT arg_THREADS)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  # The product is optimised, its tests are compiled quickly: that halves the time of a whole build.
  target_compile_options(${name} PRIVATE -O0 -g1)
  target_link_libraries(${name} PRIVATE hvk3_objects GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120 LABELS ${label})
endfunction()

# Unit tests that use the simulator: hvk3_simulator_tests(NAME [THREADS] SOURCE...) links the bench too, and
# gives the executable a dlopen of its own, see tests/support/closed_libraries.h.
function(hvk3_simulator_tests name)
  hvk3_unit_tests(${name} ${ARGN} "${PROJECT_SOURCE_DIR}/tests/support/closed_libraries.cpp")
  target_link_libraries(${name} PRIVATE ostrevan-simulator)
  target_compile_definitions(${name} PRIVATE "HVK3_SIMULATOR_DIR=\"${CMAKE_BINARY_DIR}/simulator\"")
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  add_dependencies(${name} hvk3_simulator)
endfunction()
