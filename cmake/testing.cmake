# Unit tests: hvk3_unit_tests(NAME SOURCE...) links the plug-in's object library.
find_package(GTest REQUIRED)
include(GoogleTest)

function(hvk3_unit_tests name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE hvk3_objects GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
