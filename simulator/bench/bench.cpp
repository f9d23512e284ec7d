#include "ostrevanhvk3_simulator/bench.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/picture_file.h"
#include "bench/simulation.h"
#include "bench/vocabulary.h"

namespace Osv::simulator {
namespace {

eFunction known_function(const std::string& name) {
  const auto function = function_named(name);
  if (!function.has_value()) {
    throw std::invalid_argument("no stand-in has a function '" + name + "'");
  }
  return *function;
}

std::string read_text(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file.is_open() || text.fail()) {
    throw std::runtime_error("can't read the scenario '" + path + "'");
  }
  return text.str();
}

/// The bench over the parts of the simulation.
class SimulationBench final : public Bench {
 public:
  void reset() override {
    m_cAll.scenario.clear();
    m_cAll.console.clear();
    m_cAll.faults.set({});
    m_cAll.scene.reset();
    m_cAll.journal.record(false);
    m_cAll.journal.clear();
    m_cAll.census.forget();
    m_cAll.log.set_target(eLogTarget::Nowhere, "");
    m_cAll.log.set_level(LogSink::kEverything);
    m_cAll.last_error = 0;
  }

  void plug_in(unsigned int interface, const Device& device) override {
    m_cAll.scene.plug_in(interface, device);
  }
  void unplug(unsigned int interface) override { m_cAll.scene.unplug(interface); }
  void plug_in_again(unsigned int interface) override { m_cAll.scene.plug_in_again(interface); }
  void unplug_all() override { m_cAll.scene.unplug_all(); }
  DeviceState state(unsigned int interface) const override { return m_cAll.scene.state(interface); }
  void set_leds(unsigned int interface, unsigned char green, unsigned char red) override {
    m_cAll.scene.set_leds(interface, green, red);
  }
  void set_authorization_code(unsigned int interface, const SevenBytes& code) override {
    m_cAll.scene.set_authorization_code(interface, code);
  }
  void set_secret(unsigned int interface, const SevenBytes& bytes) override {
    m_cAll.scene.set_secret(interface, bytes);
  }
  std::vector<unsigned char> memory(unsigned int interface) const override {
    return m_cAll.scene.memory(interface);
  }
  void set_memory(unsigned int interface, const std::vector<unsigned char>& bytes) override {
    m_cAll.scene.set_memory(interface, bytes);
  }
  int base_interface() const override { return m_cAll.scene.base_interface(); }
  void list_from_base(bool on) override { m_cAll.scene.list_from_base(on); }

  void set_timeline(const Timeline& timeline) override { m_cAll.scene.set_timeline(timeline); }
  void touch_down() override { m_cAll.scene.touch_down(); }
  void lift_off() override { m_cAll.scene.lift_off(); }
  void roll(eRoll way, unsigned int frames) override { m_cAll.scene.roll(way, frames); }
  unsigned int frame_count() const override { return m_cAll.scene.frame_count(); }
  void load_finger(const std::string& path) override {
    m_cAll.scene.set_finger(read_picture(path));
  }
  void set_finger(const GrayImage& picture) override { m_cAll.scene.set_finger(picture); }
  void set_built_in_finger() override { set_print(Scene::kDefaultPrint, ePrint::Plain); }
  void set_print(unsigned int seed, ePrint shape) override { m_cAll.scene.set_print(seed, shape); }
  GrayImage finger() const override { return m_cAll.scene.finger(); }
  void set_finger_kind(eFingerKind kind) override { m_cAll.scene.set_finger_kind(kind); }
  void set_skin(eSkin skin) override { m_cAll.scene.set_skin(skin); }
  void set_pressure(unsigned int percent) override { m_cAll.scene.set_pressure(percent); }
  void set_dirt(unsigned int percent) override { m_cAll.scene.set_dirt(percent); }
  Place place(int width, int height) const override { return centered(width, height); }
  void set_pace(unsigned int frames_per_second) override {
    m_cAll.scene.set_pace(frames_per_second);
  }

  void record(bool on) override { m_cAll.journal.record(on); }
  std::vector<Call> calls() const override { return m_cAll.journal.calls(); }
  unsigned int count(const std::string& function) const override {
    return m_cAll.journal.count(known_function(function));
  }
  void clear_journal() override { m_cAll.journal.clear(); }

  void set_faults(const std::string& words) override { m_cAll.faults.set(parse_faults(words)); }
  void add_faults(const std::string& words) override { m_cAll.faults.add(parse_faults(words)); }
  void clear_faults() override { m_cAll.faults.set({}); }
  void release() override { m_cAll.faults.release(); }
  void wait_until_blocked(const std::string& function) override {
    m_cAll.faults.wait_until_blocked(known_function(function));
  }

  std::string run(const std::string& line) override { return m_cAll.console.run(*this, line); }
  void load_scenario(const std::string& path) override { set_scenario(read_text(path)); }
  void set_scenario(const std::string& lines) override { m_cAll.scenario.set(*this, lines); }
  ScenarioState scenario() const override { return m_cAll.scenario.state(); }
  std::vector<Word> vocabulary() const override { return all_words(); }
  std::vector<Word> arguments() const override { return all_arguments(); }

  void set_log(eLogTarget target, const std::string& path) override {
    m_cAll.log.set_target(target, path);
  }
  void set_log_level(int level) override { m_cAll.log.set_level(level); }

  Census census() const override {
    const InstanceCensus& all = m_cAll.census;
    return {m_cAll.scene.open_handles(), all.alive(eInstance::Engine),
            all.alive(eInstance::Detector), all.wrong_releases(), all.left_behind()};
  }

 private:
  Simulation& m_cAll = simulation();
};

}  // namespace

Simulation& simulation() {
  static auto* const all = new Simulation;
  return *all;
}

InstanceCensus& instance_census() { return simulation().census; }

}  // namespace Osv::simulator

Osv::simulator::Bench* ostrevan_simulator_bench() {
  static Osv::simulator::SimulationBench bench;
  return &bench;
}
