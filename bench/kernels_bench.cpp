#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <opencv2/core.hpp>

#include "kernels.h"

/// @file
/// Measures the kernels. Each benchmark is named kernel/size/temperature/candidate; those that
/// differ in the candidate alone are meant to run together, interleaved, so that what disturbs one
/// disturbs all.

namespace Osv::bench {

void require(bool equal, const std::string& what) {
  if (!equal) {
    std::cerr << "kernels_bench: wrong result: " << what << '\n';
    std::exit(EXIT_FAILURE);
  }
}

namespace {

/// What the candidates of a kernel share: their checked work and the frames. It is made when the
/// first of them runs.
class Group {
 public:
  Group(const Kernel& kernel, Size size, Temperature temperature)
      : m_kernel(kernel), m_size(size), m_temperature(temperature) {}

  void run(benchmark::State& state, const std::string& candidate) {
    make();
    const auto found = std::find_if(m_candidates.begin(), m_candidates.end(),
                                    [&](const Candidate& c) { return c.name == candidate; });
    for ([[maybe_unused]] auto _ : state) {
      found->work(m_ring->next());
    }
  }

 private:
  void make() {
    if (m_ring == nullptr) {
      m_candidates = m_kernel.candidates(m_size);
      m_ring = std::make_unique<Ring>(m_size, m_temperature);
    }
  }

  Kernel m_kernel;
  Size m_size;
  Temperature m_temperature;
  std::vector<Candidate> m_candidates;
  std::unique_ptr<Ring> m_ring;
};

double minimum(const std::vector<double>& times) {
  return *std::min_element(times.begin(), times.end());
}

void add_group(const Kernel& kernel, Size size, Temperature temperature) {
  const auto group = std::make_shared<Group>(kernel, size, temperature);
  const std::string prefix = kernel.name + "/" + name_of(size) + "/" +
                             (temperature == Temperature::kWarm ? "warm" : "cold") + "/";
  for (const std::string& candidate : kernel.names) {
    benchmark::RegisterBenchmark((prefix + candidate).c_str(), [group, candidate](
                                                                   benchmark::State& state) {
      group->run(state, candidate);
    })->ComputeStatistics("min", minimum);
  }
}

void add_kernels(const std::vector<Kernel>& kernels) {
  for (const Kernel& kernel : kernels) {
    for (const Size size : kSizes) {
      add_group(kernel, size, Temperature::kWarm);
      add_group(kernel, size, Temperature::kCold);
    }
  }
}

}  // namespace
}  // namespace Osv::bench

int main(int argc, char** argv) {
  cv::setNumThreads(1);  // as everything that is compared
  Osv::bench::add_kernels(Osv::bench::image_kernels());
  Osv::bench::add_kernels(Osv::bench::rescale_kernels());
  Osv::bench::add_kernels(Osv::bench::detection_kernels());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return EXIT_FAILURE;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return EXIT_SUCCESS;
}
