#include "soak/footprint.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Osv::soak {
namespace {

// Where freed memory lies in the allocator's blocks differs a little from round to round.
constexpr std::size_t kDisorderResident = std::size_t{1} << 20;
constexpr std::size_t kDisorderHeap = std::size_t{64} << 10;

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

/// "" when the largest of the second half lies within `slack` of the largest of the first.
std::string grown(const std::vector<Footprint>& points, std::size_t Footprint::*value,
                  std::size_t slack, const std::string& name) {
  const auto half = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
  const auto less = [value](const Footprint& a, const Footprint& b) { return a.*value < b.*value; };
  const std::size_t before = (*std::max_element(points.begin(), half, less)).*value;
  const std::size_t after = (*std::max_element(half, points.end(), less)).*value;
  return after <= before + slack ? ""
                                 : name + " grew from " + std::to_string(before) + " to " +
                                       std::to_string(after) + " bytes. ";
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
  return {frames, resident_memory(), mallinfo2().uordblks, entries("/proc/self/fd"),
          entries("/proc/self/task")};
}

std::string Curve::growth() const {
  if (m_vPoints.size() < 4) {
    return "The run was too short to tell. ";
  }
  return changed(m_vPoints, &Footprint::descriptors, "descriptors") +
         changed(m_vPoints, &Footprint::threads, "threads") +
         grown(m_vPoints, &Footprint::heap, kDisorderHeap, "The heap") +
         grown(m_vPoints, &Footprint::resident, kDisorderResident, "Resident memory");
}

}  // namespace Osv::soak
