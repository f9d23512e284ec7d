#include "bench/scene.h"

#include <algorithm>
#include <stdexcept>

#include "bench/dirt.h"
#include "bench/print.h"
#include "bench/simulation.h"
#include "bench/skin.h"

namespace Osv::simulator {
namespace {

void check_interface(unsigned int interface) {
  if (interface >= kInterfaceCount) {
    throw std::out_of_range("there is no interface " + std::to_string(interface));
  }
}

void check_percent(unsigned int percent) {
  constexpr unsigned int kWhole = 100;
  if (percent > kWhole) {
    throw std::invalid_argument("there are no " + std::to_string(percent) + " percent");
  }
}

const char* name_of(eFingerKind kind) {
  constexpr std::array kNames = {"live", "printed", "moulded"};
  return kNames[static_cast<std::size_t>(kind)];
}

const char* name_of(eSkin skin) {
  constexpr std::array kNames = {"normal", "dry", "wet"};
  return kNames[static_cast<std::size_t>(skin)];
}

const char* on_or_off(unsigned char level) { return level == 0 ? "off" : "on"; }

/// A scanner in a line of words. Its codes stay with it.
std::string in_words(unsigned int interface, const DeviceState& state) {
  return "interface " + std::to_string(interface) + ": " + state.serial.c_str() +
         (state.plugged_in ? ", plugged in" : ", unplugged") + ", green " + on_or_off(state.green) +
         ", red " + on_or_off(state.red);
}

}  // namespace

Scene::Scene() { reset(); }

void Scene::reset() {
  forget_units();
  plug_in(0, Device());
  set_print(kDefaultPrint, ePrint::Plain);
  set_finger_kind(eFingerKind::Live);
  set_skin(eSkin::Normal);
  set_pressure(kWhole);
  set_dirt(0);
  set_timeline(Timeline());
  set_pace(kDefaultPace);
}

void Scene::forget_units() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  for (auto& unit : m_aUnits) {
    unit.reset();
  }
  m_mHandles.clear();
  m_nLastHandle = 0;
  m_nBaseInterface = 0;
  m_bListFromBase = false;
}

Unit* Scene::unit_of(std::uint32_t handle) {
  const auto found = m_mHandles.find(handle);
  if (found == m_mHandles.end()) {
    return nullptr;
  }
  Unit* const unit = m_aUnits[found->second.interface].get();
  const bool alive = unit != nullptr && unit->plugged_in && unit->plugged == found->second.plugged;
  return alive ? unit : nullptr;
}

Unit& Scene::known_unit(unsigned int interface) const {
  check_interface(interface);
  if (m_aUnits[interface] == nullptr) {
    throw std::out_of_range("there was never a scanner at interface " + std::to_string(interface));
  }
  return *m_aUnits[interface];
}

std::uint32_t Scene::open(int interface, std::uint32_t& handle) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  handle = 0;
  const auto index = static_cast<unsigned int>(interface);
  if (index >= kInterfaceCount || m_aUnits[index] == nullptr || !m_aUnits[index]->plugged_in) {
    return kNoDevice;
  }
  handle = ++m_nLastHandle;
  m_mHandles[handle] = {index, m_aUnits[index]->plugged};
  return 0;
}

std::uint32_t Scene::close(std::uint32_t handle) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_mHandles.erase(handle) != 0) {
    return 0;
  }
  if (handle != 0) {
    simulation().census.released_wrongly();
  }
  return kNoDevice;
}

bool Scene::listed(unsigned int interface) const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  const bool left_out = m_bListFromBase && interface < static_cast<unsigned int>(m_nBaseInterface);
  return !left_out && m_aUnits[interface] != nullptr && m_aUnits[interface]->plugged_in;
}

std::uint32_t Scene::set_base_interface(int interface) {
  if (static_cast<unsigned int>(interface) >= kInterfaceCount) {
    return kNoDevice;
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_nBaseInterface = interface;
  return 0;
}

int Scene::base_interface() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_nBaseInterface;
}

const GrayImage& Scene::picture() const {
  return m_pPicture != nullptr ? *m_pPicture : *built_in_print(m_nPrintSeed, m_ePrintShape);
}

const Platen& Scene::laid_out_platen() {
  if (!m_sPlaten.has_value()) {
    m_sPlaten.emplace();
    m_sPlaten->finger =
        lay_down(m_eSkin == eSkin::Normal ? picture() : with_skin(picture(), m_eSkin));
    m_sPlaten->dirt = make_dirt(m_nDirt);
  }
  return *m_sPlaten;
}

void Scene::forget_platen() {
  m_sPlaten.reset();
  for (const auto& unit : m_aUnits) {
    if (unit != nullptr) {
      unit->forget_frames();
    }
  }
}

Touch Scene::touch() const {
  Touch touch = m_cMotion.at(m_nFrames);
  touch.contact *= static_cast<float>(m_nPressure) / static_cast<float>(kWhole);
  return touch;
}

std::uint32_t Scene::take_frame(std::uint32_t handle, eLight light, int dose,
                                unsigned char* buffer) {
  if (buffer == nullptr) {
    return kInvalidParameter;
  }
  const std::uint32_t error = with_unit(handle, [](Unit&) { return 0U; });
  if (error != 0) {
    return error;
  }
  // Dark and backlight frames come along with a dose frame and take no time of their own.
  if (light == eLight::Dose) {
    m_cPacer.wait();
  }
  return with_unit(handle, [&](Unit& unit) {
    const Exposure exposure = {light, dose, touch(), m_eKind};
    unit.take_frame(exposure, laid_out_platen(), buffer);
    if (light == eLight::Dose) {
      m_sLastTouch = m_cMotion.at(m_nFrames);
      ++m_nFrames;
    }
    return 0U;
  });
}

std::uint32_t Scene::look_for_finger(std::uint32_t handle) {
  return with_unit(handle, [&](Unit&) { return touch().contact > 0 ? 0U : kEmptyFrame; });
}

void Scene::plug_in(unsigned int interface, const Device& device) {
  check_interface(interface);
  auto unit = std::make_unique<Unit>(device);
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_aUnits[interface] != nullptr) {
    unit->plugged = m_aUnits[interface]->plugged + 1;
  }
  m_aUnits[interface] = std::move(unit);
}

void Scene::unplug(unsigned int interface) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  known_unit(interface).plugged_in = false;
}

void Scene::plug_in_again(unsigned int interface) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  Unit& unit = known_unit(interface);
  if (!unit.plugged_in) {
    unit.plugged_in = true;
    ++unit.plugged;
    unit.green = 0;
    unit.red = 0;
  }
}

void Scene::unplug_all() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  for (const auto& unit : m_aUnits) {
    if (unit != nullptr) {
      unit->plugged_in = false;
    }
  }
}

unsigned int Scene::open_handles() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return static_cast<unsigned int>(m_mHandles.size());
}

DeviceState Scene::state(unsigned int interface) const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  DeviceState state = known_unit(interface).state();
  state.open_handles = static_cast<unsigned int>(
      std::count_if(m_mHandles.begin(), m_mHandles.end(),
                    [&](const auto& entry) { return entry.second.interface == interface; }));
  return state;
}

std::vector<unsigned char> Scene::memory(unsigned int interface) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return known_unit(interface).memory();
}

void Scene::set_memory(unsigned int interface, const std::vector<unsigned char>& bytes) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  known_unit(interface).memory() = bytes;
}

void Scene::list_from_base(bool on) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_bListFromBase = on;
}

void Scene::set_leds(unsigned int interface, unsigned char green, unsigned char red) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  Unit& unit = known_unit(interface);
  unit.green = green;
  unit.red = red;
}

void Scene::set_authorization_code(unsigned int interface, const SevenBytes& code) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  known_unit(interface).authorization_code() = code;
}

void Scene::set_secret(unsigned int interface, const SevenBytes& bytes) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  known_unit(interface).secret() = bytes;
}

void Scene::move(const Motion& motion) {
  m_cMotion = motion;
  m_nFrames = 0;
}

void Scene::set_timeline(const Timeline& timeline) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  move(Motion(timeline));
  m_sLastTouch = {};
}

void Scene::touch_down() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  move(Motion::touching_down(m_sLastTouch));
}

void Scene::lift_off() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  move(Motion::lifting_off(m_sLastTouch));
}

void Scene::roll(eRoll way, unsigned int frames) {
  if (frames == 0) {
    throw std::invalid_argument("a roll needs frames");
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  move(Motion::rolling(m_sLastTouch, way, frames));
}

unsigned int Scene::frame_count() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_nFrames;
}

void Scene::set_finger(const GrayImage& picture) {
  if (picture.width < 1 || picture.height < 1 ||
      picture.pixels.size() !=
          static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height)) {
    throw std::invalid_argument("the pixels of a picture must fit its size");
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_pPicture = std::make_shared<const GrayImage>(picture);
  forget_platen();
}

void Scene::set_print(unsigned int seed, ePrint shape) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_pPicture == nullptr && seed == m_nPrintSeed && shape == m_ePrintShape) {
    return;
  }
  m_pPicture = nullptr;
  m_nPrintSeed = seed;
  m_ePrintShape = shape;
  forget_platen();
}

GrayImage Scene::finger() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return picture();
}

void Scene::set_finger_kind(eFingerKind kind) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_eKind = kind;
}

void Scene::set_skin(eSkin skin) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_eSkin != skin) {
    m_eSkin = skin;
    forget_platen();
  }
}

void Scene::set_pressure(unsigned int percent) {
  check_percent(percent);
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_nPressure = percent;
}

void Scene::set_dirt(unsigned int percent) {
  check_percent(percent);
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_nDirt != percent) {
    m_nDirt = percent;
    forget_platen();
  }
}

std::string Scene::in_words() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  std::string words = m_pPicture != nullptr ? "picture" : "print " + std::to_string(m_nPrintSeed);
  words += m_pPicture == nullptr && m_ePrintShape == ePrint::Rolled ? " rolled" : "";
  words += std::string(", ") + name_of(m_eKind) + ", " + name_of(m_eSkin) + " skin, pressure " +
           std::to_string(m_nPressure) + ", " + (touch().contact > 0 ? "touches" : "is away") +
           "\ndirt " + std::to_string(m_nDirt);
  for (unsigned int interface = 0; interface < kInterfaceCount; ++interface) {
    if (m_aUnits[interface] != nullptr) {
      words += "\n" + simulator::in_words(interface, m_aUnits[interface]->state());
    }
  }
  return words;
}

Scene& scene() { return simulation().scene; }

}  // namespace Osv::simulator
