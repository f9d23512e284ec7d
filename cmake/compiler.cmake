# What every target of this tree is compiled with.
include(CheckCXXCompilerFlag)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# -ffp-contract=off: results are required bit for bit, so no fused multiply-add.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -ffp-contract=off)

# A unique symbol would keep the plug-in loaded after its client has closed it.
check_cxx_compiler_flag(-fno-gnu-unique HVK3_HAS_NO_GNU_UNIQUE)
if(HVK3_HAS_NO_GNU_UNIQUE)
  add_compile_options(-fno-gnu-unique)
endif()
