#include "closed_libraries/scene.h"

#include <algorithm>
#include <string_view>

#include "support/require.h"

namespace Osv::fuzz {
namespace {

/// Sides of frames: small ones, so that a run is short, with 0 and odd ones among them.
int side_of(unsigned int byte) { return static_cast<int>(byte % 200); }

std::vector<std::uint8_t> good_memory() {
  constexpr std::string_view kRevision = "fuzzed unit 0001";
  constexpr std::string_view kDescription = "unit";
  constexpr std::string_view kPayload("CAL\0GEO\0and what only the engine knows", 38);
  std::vector<std::uint8_t> memory = {1, 7, 3, 111};
  const auto append = [&](std::string_view text) {
    memory.insert(memory.end(), text.begin(), text.end());
  };
  append(kRevision);
  memory.push_back(static_cast<std::uint8_t>(kDescription.size()));
  append(kDescription);
  memory.insert(memory.end(), {static_cast<std::uint8_t>(kPayload.size()), 0, 0, 0});
  append(kPayload);
  return memory;
}

std::uintptr_t number_of(void* handle) { return reinterpret_cast<std::uintptr_t>(handle); }
void* handle_of(std::uintptr_t number) { return reinterpret_cast<void*>(number); }

}  // namespace

Scene& scene() {
  static Scene all;
  return all;
}

void Scene::begin(Input& input) {
  const std::uint8_t absent = input.byte();
  m_installation = {(absent & 1) == 0, (absent & 2) == 0, (absent & 4) == 0, (absent & 8) == 0,
                    (absent & 16) == 0};
  install(m_installation);
  const std::uint8_t attached = input.byte();
  const int width = side_of(input.byte());
  const int height = side_of(input.byte());
  for (unsigned int i = 0; i < kInterfaces; ++i) {
    m_units[i] = {(attached >> i & 1) == 0, 0, width, height};
  }
  const Bytes memory = input.bytes(input.byte());
  m_memory = memory.empty() ? good_memory() : std::vector(memory.begin(), memory.end());
  last_error = 0;
}

void Scene::end() {
  require(m_devices.empty(), "every device is closed");
  require(m_engines.empty(), "every engine is deleted");
  require(!m_detects, "the detector's library is stopped");
}

void Scene::change_units(std::uint32_t value) {
  Unit& unit = m_units[value % kInterfaces];
  unit.attached = !unit.attached;
  ++unit.generation;
  if ((value >> 8) != 0) {
    unit.attached = true;
    unit.width = side_of(value >> 8);
    unit.height = side_of(value >> 16);
  }
}

bool Scene::is_attached(int interface) const {
  return interface >= 0 && interface < static_cast<int>(kInterfaces) &&
         m_units[static_cast<unsigned int>(interface)].attached;
}

void* Scene::open(int interface) {
  if (!is_attached(interface)) {
    return nullptr;
  }
  const auto number = static_cast<unsigned int>(interface);
  m_devices[++m_last_handle] = {number, m_units[number]};
  return handle_of(m_last_handle);
}

void Scene::close(void* device) {
  require(device == nullptr || m_devices.erase(number_of(device)) == 1, "a device is closed once");
}

OpenDevice* Scene::find(void* device) {
  if (device == nullptr) {
    return nullptr;
  }
  const auto found = m_devices.find(number_of(device));
  require(found != m_devices.end(), "a call has a handle that is open");
  const Unit& unit = m_units[found->second.interface];
  const bool alive = unit.attached && unit.generation == found->second.unit.generation;
  return alive ? &found->second : nullptr;
}

void* Scene::create_engine() {
  m_engines.insert(++m_last_handle);
  return handle_of(m_last_handle);
}

void Scene::destroy_engine(void* engine) {
  require(m_engines.erase(number_of(engine)) == 1, "an engine is deleted once");
}

void Scene::require_engine(void* engine) const {
  require(m_engines.contains(number_of(engine)), "a call has an engine that lives");
}

void Scene::start_detection() {
  require(!m_detects, "the detector's library is started once");
  m_detects = true;
}

void Scene::stop_detection() {
  require(m_detects, "only what is started is stopped");
  m_detects = false;
  m_detectors.clear();
}

void* Scene::create_detector() {
  require(m_detects, "a detector is made by a library that is started");
  m_detectors.insert(++m_last_handle);
  return handle_of(m_last_handle);
}

void Scene::destroy_detector(void* detector) {
  require_detector(detector);
  m_detectors.erase(number_of(detector));
}

void Scene::require_detector(void* detector) const {
  require(m_detects, "a call comes to a detector's library that is started");
  require(detector == nullptr || m_detectors.contains(number_of(detector)),
          "a call has a detector that lives");
}

}  // namespace Osv::fuzz
