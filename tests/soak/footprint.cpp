#include "soak/footprint.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "faults/heap.h"

namespace Osv::soak {
namespace {

// Pages come and go with the system's needs, a thread's stack and the libraries' files; what is
// allocated is counted beside it.
constexpr double kRisingResident = 512 << 10;  // bytes over the second half

std::size_t entries(const char* folder) {
  const std::filesystem::directory_iterator found(folder);
  return static_cast<std::size_t>(std::distance(begin(found), end(found)));
}

std::size_t resident_memory() {
  std::size_t all = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// How much a line through the points rises from the first to the last, by least squares.
double rise(const std::vector<Footprint>& points, std::size_t Footprint::*value) {
  const auto count = static_cast<double>(points.size());
  double frames = 0;
  double values = 0;
  for (const Footprint& point : points) {
    frames += static_cast<double>(point.frames) / count;
    values += static_cast<double>(point.*value) / count;
  }
  double products = 0;
  double squares = 0;
  for (const Footprint& point : points) {
    const double distance = static_cast<double>(point.frames) - frames;
    products += distance * (static_cast<double>(point.*value) - values);
    squares += distance * distance;
  }
  return products / squares * static_cast<double>(points.back().frames - points.front().frames);
}

/// "" when the resident memory keeps its size through the second half.
std::string risen(const std::vector<Footprint>& points) {
  const auto half = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
  const double rising = rise({half, points.end()}, &Footprint::resident);
  return rising <= kRisingResident
             ? ""
             : "Resident memory rises by " + std::to_string(rising) + " bytes. ";
}

std::size_t least(const std::vector<Footprint>& points, std::size_t Footprint::*value) {
  const auto less = [value](const Footprint& a, const Footprint& b) { return a.*value < b.*value; };
  return (*std::min_element(points.begin(), points.end(), less)).*value;
}

/// "" when the second half comes down to the least of the first, but for `slack`. Once in a
/// thousand rounds a block is there that is gone with the next one; what leaks is never gone.
std::string grown(const std::vector<Footprint>& points, std::size_t Footprint::*value,
                  std::size_t slack, const std::string& name) {
  const auto half = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
  const std::size_t before = least({points.begin(), half}, value);
  const std::size_t after = least({half, points.end()}, value);
  return after <= before + slack
             ? ""
             : std::to_string(before) + " " + name + " became " + std::to_string(after) + ". ";
}

/// "" when all points have what the first has.
std::string changed(const std::vector<Footprint>& points, std::size_t Footprint::*value,
                    const std::string& name) {
  for (const Footprint& point : points) {
    if (point.*value != points.front().*value) {
      return std::to_string(points.front().*value) + " " + name + " became " +
             std::to_string(point.*value) + " at frame " + std::to_string(point.frames) + ". ";
    }
  }
  return "";
}

}  // namespace

Footprint footprint(long frames) {
  return {frames,
          resident_memory(),
          static_cast<std::size_t>(faults::live_bytes().value_or(0)),
          static_cast<std::size_t>(faults::live_blocks().value_or(0)),
          entries("/proc/self/fd"),
          entries("/proc/self/task")};
}

std::string Curve::growth() const {
  constexpr std::ptrdiff_t kWarming = 4;  // rounds until every cache is filled
  if (m_vPoints.size() < 2 * kWarming) {
    return "The run was too short to tell. ";
  }
  const std::vector<Footprint> warm(m_vPoints.begin() + kWarming, m_vPoints.end());
  return changed(warm, &Footprint::descriptors, "descriptors") +
         changed(warm, &Footprint::threads, "threads") +
         grown(warm, &Footprint::blocks, 0, "blocks of memory") +
         grown(warm, &Footprint::heap, warm.front().blocks * faults::kMoreThanAsked,
               "allocated bytes") +
         risen(warm);
}

}  // namespace Osv::soak
