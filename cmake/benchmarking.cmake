# Benchmarks, and the libraries that they compare with. Nothing but bench/ needs these.
find_package(benchmark REQUIRED)
find_package(Eigen3 REQUIRED NO_MODULE)

# Debian keeps what CMake and pkg-config ask for in a package that brings all of OpenCV and more.
find_path(HVK3_OPENCV_INCLUDE opencv2/imgproc.hpp PATH_SUFFIXES opencv4 REQUIRED)
find_library(HVK3_OPENCV_CORE opencv_core REQUIRED)
find_library(HVK3_OPENCV_IMGPROC opencv_imgproc REQUIRED)
find_library(HVK3_YUV yuv REQUIRED)

add_library(hvk3_bench_libraries INTERFACE)
target_include_directories(hvk3_bench_libraries SYSTEM INTERFACE "${HVK3_OPENCV_INCLUDE}")
target_link_libraries(hvk3_bench_libraries INTERFACE "${HVK3_OPENCV_CORE}" "${HVK3_OPENCV_IMGPROC}"
                                                     "${HVK3_YUV}" Eigen3::Eigen)

add_custom_target(hvk3_benchmarks)

# hvk3_benchmark(NAME SOURCE...): a program that scripts/bench runs. It links the plug-in's objects.
function(hvk3_benchmark name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/bench")
  target_link_libraries(${name} PRIVATE hvk3_objects hvk3_bench_libraries benchmark::benchmark)
  add_dependencies(hvk3_benchmarks ${name})
endfunction()
