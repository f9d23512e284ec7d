# Fuzz targets. With HVK3_FUZZ they are linked with clang's libFuzzer, for scripts/fuzz. Otherwise
# each is a program that replays its seeds and a number of mutations of them, and an ordinary test.
# A seed is made by fuzz/seeds.py; nothing but fuzz/ needs these.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# What is fuzzed is optimised; the targets are compiled quickly.
set(HVK3_FUZZ_OPTIONS -O1 -g1)

add_custom_target(hvk3_fuzzers)
add_library(hvk3_fuzz_support OBJECT support/memory.cpp support/require.cpp support/target.cpp
                                     "${PROJECT_SOURCE_DIR}/tests/support/sanitizer_options.cpp")
if(NOT HVK3_FUZZ)
  target_sources(hvk3_fuzz_support PRIVATE support/replay.cpp)
endif()
target_include_directories(hvk3_fuzz_support PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}"
                                                    "${PROJECT_SOURCE_DIR}/src")
target_compile_options(hvk3_fuzz_support PRIVATE ${HVK3_FUZZ_OPTIONS})
set_target_properties(hvk3_fuzz_support PROPERTIES EXCLUDE_FROM_ALL ON)

# hvk3_fuzz_target(NAME MUTATIONS [SOURCE...]): NAME.cpp and more sources; the ordinary test makes
# so many mutations. With and without AddressSanitizer those of all targets take about a minute of
# processor time.
function(hvk3_fuzz_target name mutations)
  set(program fuzz_${name})
  add_executable(${program} ${name}.cpp ${ARGN})
  target_compile_options(${program} PRIVATE ${HVK3_FUZZ_OPTIONS})
  target_link_libraries(${program} PRIVATE hvk3_fuzz_support ${CMAKE_DL_LIBS})
  target_link_options(${program} PRIVATE "LINKER:--wrap=malloc")
  set_target_properties(${program} PROPERTIES ENABLE_EXPORTS ON)
  if(HVK3_FUZZ)
    target_link_options(${program} PRIVATE -fsanitize=fuzzer)
  endif()

  set(seeds "${CMAKE_CURRENT_BINARY_DIR}/seeds/${name}")
  set(maker "${CMAKE_CURRENT_SOURCE_DIR}/seeds.py")
  add_custom_command(
    OUTPUT "${seeds}.made"
    COMMAND "${Python3_EXECUTABLE}" "${maker}" ${name} "${seeds}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${seeds}.made"
    DEPENDS "${maker}"
    VERBATIM)
  target_sources(${program} PRIVATE "${seeds}.made")

  add_dependencies(hvk3_fuzzers ${program})
  if(NOT BUILD_TESTING OR HVK3_THREADS_ONLY)
    set_target_properties(${program} PROPERTIES EXCLUDE_FROM_ALL ON)
  elseif(NOT HVK3_FUZZ)
    add_test(NAME Fuzz.${name} COMMAND ${program} "${seeds}" ${mutations})
    set_tests_properties(Fuzz.${name} PROPERTIES TIMEOUT 600 LABELS plain)
  endif()
endfunction()
