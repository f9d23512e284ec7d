# HVK3_SANITIZE: a comma-separated list for -fsanitize, empty for none.
set(HVK3_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined or thread")

if(HVK3_SANITIZE)
  add_compile_options(-fsanitize=${HVK3_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${HVK3_SANITIZE})
endif()
