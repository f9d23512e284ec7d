#include "measure.h"

#include <sys/prctl.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>

namespace Osv::bench {
namespace {

constexpr unsigned long kTight = 1;  // nanoseconds; 0 would mean the usual

nlohmann::json to_json(const Row& row) {
  nlohmann::json json = {{"subject", row.subject},
                         {"size", row.size},
                         {"what", row.what},
                         {"value", row.value},
                         {"unit", row.unit}};
  if (row.bar >= 0) {
    json["bar"] = row.bar;
  }
  return json;
}

void write(const std::vector<Row>& rows) {
  nlohmann::json all = nlohmann::json::array();
  std::transform(rows.begin(), rows.end(), std::back_inserter(all), to_json);
  std::cout << all.dump(1) << '\n';
}

}  // namespace

std::int64_t now(clockid_t clock) {
  constexpr std::int64_t kSecond = 1'000'000'000;
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * kSecond + time.tv_nsec;
}

double quantile(std::vector<double> values, double share) {
  const auto position = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + position, values.end());
  return values[static_cast<std::size_t>(position)];
}

TightSleeps::TightSleeps() { prctl(PR_SET_TIMERSLACK, kTight); }
TightSleeps::~TightSleeps() { prctl(PR_SET_TIMERSLACK, 0UL); }

const std::vector<Size>& usual_sizes() {
  static const std::vector<Size> sizes = {{320, 480}, {640, 480}, {800, 750}, {1600, 1500}};
  return sizes;
}

int measure(int argc, char** argv,
            const std::vector<std::pair<std::string, std::function<std::vector<Row>()>>>& all) {
  const std::string wanted = argc == 2 ? argv[1] : "";
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const auto& entry) { return entry.first == wanted; });
  if (found == all.end()) {
    std::for_each(all.begin(), all.end(),
                  [](const auto& entry) { std::fprintf(stderr, "%s\n", entry.first.c_str()); });
    return 2;
  }
  try {
    write(found->second());
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: %s\n", wanted.c_str(), failure.what());
    return 1;
  }
}

}  // namespace Osv::bench
