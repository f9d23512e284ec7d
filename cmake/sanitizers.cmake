# HVK3_SANITIZE: a comma-separated list for -fsanitize, empty for none.
set(HVK3_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined or thread")

if(HVK3_SANITIZE)
  add_compile_options(-fsanitize=${HVK3_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${HVK3_SANITIZE})
  # A closed library has names of its own for the types of its functions: its functions are never of
  # the same type as the pointers that they are called through, only called in the same way.
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-fno-sanitize=function)
  endif()
endif()

# libFuzzer follows the coverage of everything but of itself.
if(HVK3_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
