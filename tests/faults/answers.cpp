#include "faults/answers.h"

#include <algorithm>

namespace Osv::faults {
namespace {

constexpr long kNoDevice = 259;

/// Takes over what the other effect sets; the later of two faults counts.
void merge(Effect& effect, const Effect& other) {
  const auto take = [](auto& mine, const auto& others) {
    if (others) {
      mine = others;
    }
  };
  take(effect.fails_with, other.fails_with);
  take(effect.answer, other.answer);
  take(effect.number, other.number);
  take(effect.frame_size, other.frame_size);
  take(effect.text, other.text);
  take(effect.no_text, other.no_text);
  take(effect.null_handle, other.null_handle);
  take(effect.not_a_number, other.not_a_number);
  take(effect.description, other.description);
}

}  // namespace

Answers::Answers(const Scenario& scenario) {
  for (const Attached& device : scenario.attached) {
    m_vUnits.push_back({.device = device, .plugged_in = !device.away});
  }
}

void Answers::plan(const Faults& faults) {
  m_vFaults = faults;
  m_aPlanCounts = {};
}

void Answers::plan(const Incident& incident) {
  m_sIncident = incident;
  m_aPlanCounts = {};
  if (incident.call == 0) {
    unplug(incident.comes_back);
  }
}

void Answers::allocate(eThread thread) {
  if (m_sExhaustion.has_value() && m_sExhaustion->thread == thread && !m_sExhaustion->no_worker &&
      m_sExhaustion->calls == m_vCalls.size()) {
    const Failure failure = m_sExhaustion->failure;
    m_sExhaustion.reset();
    throw failure;
  }
}

void Answers::allocate() {
  if (m_sExhaustion.has_value()) {
    allocate(m_sExhaustion->thread);
  }
}

bool Answers::lacks_worker() {
  const bool lacks = m_sExhaustion.has_value() && m_sExhaustion->no_worker &&
                     m_sExhaustion->calls == m_vCalls.size();
  if (lacks) {
    m_sExhaustion.reset();
  }
  return lacks;
}

/// What a call answers is settled by who makes it before the call is counted here, so that an
/// incident comes behind it.
Effect Answers::call(eFunction function) {
  allocate();
  if (lacks(function)) {
    throw m_cMissing.at(function);
  }
  const std::size_t index = simulator::index_of(function);
  ++m_aCounts[index];
  m_vCalls.push_back(function);
  const unsigned int number = ++m_aPlanCounts[index];
  if (m_sIncident.has_value() && m_sIncident->function == function && m_sIncident->call == number) {
    unplug(m_sIncident->comes_back);
  }
  Effect effect;
  for (const Fault& fault : m_vFaults) {
    if (fault.is_about(function, number)) {
      merge(effect, fault.effect);
    }
  }
  return effect;
}

int Answers::status(eFunction function, long own_error, Effect& effect) {
  effect = call(function);
  const bool failed = effect.fails_with.has_value() || own_error != 0;
  if (failed) {
    m_nLastError = effect.fails_with.value_or(own_error);
  }
  return static_cast<int>(effect.answer.value_or(failed ? 0 : 1));
}

bool Answers::succeeds(eFunction function, long own_error) {
  Effect effect;
  return status(function, own_error, effect) != 0;
}

long Answers::code(eFunction function, long own_code, Effect& effect) {
  effect = call(function);
  return effect.fails_with.value_or(effect.answer.value_or(own_code));
}

Handle Answers::open(unsigned int interface) {
  const auto unit = std::find_if(m_vUnits.begin(), m_vUnits.end(), [&](const Unit& candidate) {
    return candidate.device.interface == interface && candidate.plugged_in;
  });
  const std::optional<unsigned int> plugged =
      unit == m_vUnits.end() ? std::nullopt : std::optional(unit->plugged);
  const Effect effect = call(eFunction::ftrScanOpenDeviceOnInterface);
  if (effect.fails_with.has_value()) {
    m_nLastError = *effect.fails_with;
    return {};
  }
  if (effect.null_handle) {
    return {};
  }
  if (!plugged.has_value()) {
    m_nLastError = kNoDevice;
    return {};
  }
  ++m_nOpenHandles;
  return {interface, *plugged, true};
}

void Answers::close(const Handle& /*handle*/) {
  Effect effect;
  status(eFunction::ftrScanCloseDevice, 0, effect);
  if (!effect.fails_with.has_value()) {
    --m_nOpenHandles;
  }
}

long Answers::last_error() {
  const Effect effect = call(eFunction::ftrScanGetLastError);
  return effect.answer.value_or(m_nLastError);
}

long Answers::error_of(const Handle& handle) const {
  const bool alive =
      handle.open && std::any_of(m_vUnits.begin(), m_vUnits.end(), [&](const auto& unit) {
        return unit.device.interface == handle.interface && unit.plugged_in &&
               unit.plugged == handle.plugged;
      });
  return alive ? 0 : kNoDevice;
}

std::vector<unsigned int> Answers::listed() const {
  std::vector<unsigned int> interfaces;
  for (const Unit& unit : m_vUnits) {
    if (unit.plugged_in && unit.device.interface >= m_nBase) {
      interfaces.push_back(unit.device.interface);
    }
  }
  return interfaces;
}

bool Answers::set_base(unsigned int interface) {
  Effect effect;
  const bool done = status(eFunction::ftrSetBaseInterface, 0, effect) != 0;
  m_nBase = done ? interface : m_nBase;
  return done;
}

std::optional<Attached> Answers::device_at(unsigned int interface) const {
  const auto unit = std::find_if(m_vUnits.begin(), m_vUnits.end(), [&](const Unit& candidate) {
    return candidate.device.interface == interface;
  });
  return unit == m_vUnits.end() ? std::nullopt : std::optional(unit->device);
}

void Answers::unplug(unsigned int interface) {
  for (Unit& unit : m_vUnits) {
    unit.plugged_in = unit.plugged_in && unit.device.interface != interface;
  }
}

void Answers::unplug(eReturn comes_back) {
  unplug(0);
  if (comes_back == eReturn::Here) {
    plug_in_again(0);
  } else if (comes_back == eReturn::Elsewhere) {
    plug_in_again(kElsewhere);
  } else if (comes_back == eReturn::Another) {
    replace({.frames = kLargerFrames, .serial = kSerialOfAnother});
  }
}

void Answers::replace(const Attached& device) {
  for (Unit& unit : m_vUnits) {
    if (unit.device.interface == device.interface) {
      unit = {.device = device, .plugged_in = true, .plugged = unit.plugged + 1};
    }
  }
}

void Answers::plug_in_again(unsigned int interface) {
  for (Unit& unit : m_vUnits) {
    if (unit.device.interface == interface && !unit.plugged_in) {
      unit.plugged_in = true;
      ++unit.plugged;
    }
  }
}

}  // namespace Osv::faults
