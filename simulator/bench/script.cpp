#include "bench/script.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "bench/line_reader.h"

namespace Osv::simulator {
namespace {

std::deque<Step> read_lines(const std::string& lines) {
  std::deque<Step> steps;
  std::istringstream stream(lines);
  std::string line;
  for (unsigned int number = 1; std::getline(stream, line); ++number) {
    try {
      if (auto step = read_line(line); step.has_value()) {
        steps.push_back(std::move(*step));
      }
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument("line " + std::to_string(number) + ": " + error.what());
    }
  }
  return steps;
}

}  // namespace

std::string Script::begin(Bench& bench, const Step& step) {
  if (step.act == nullptr) {
    m_sWait = step.wait;
    m_bWaiting = true;
    return {};
  }
  return step.act(bench);
}

std::string Script::run(Bench& bench, const std::string& line) {
  auto step = read_line(line);
  if (!step.has_value()) {
    return {};
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_bWaiting) {
    m_dSteps.push_back(std::move(*step));
    return {};
  }
  try {
    return begin(bench, *step);
  } catch (const std::logic_error& error) {
    throw std::runtime_error(error.what());  // an interface that never had a device
  }
}

void Script::set(Bench& bench, const std::string& lines) {
  std::deque<Step> steps = read_lines(lines);
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_dSteps = std::move(steps);
  m_bWaiting = false;
  m_sTrouble.clear();
  go_on(bench);
}

void Script::clear() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_dSteps.clear();
  m_bWaiting = false;
  m_sTrouble.clear();
}

ScenarioState Script::state() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return {.ended = !m_bWaiting && m_dSteps.empty(), .trouble = m_sTrouble};
}

void Script::count_call(Bench& bench, eFunction function) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  const auto& functions = m_sWait.functions;
  if (!m_bWaiting || std::find(functions.begin(), functions.end(), function) == functions.end()) {
    return;
  }
  --m_sWait.calls;
  if (m_sWait.calls == 0) {
    m_bWaiting = false;
    go_on(bench);
  }
}

void Script::go_on(Bench& bench) {
  while (!m_bWaiting && !m_dSteps.empty()) {
    const Step step = std::move(m_dSteps.front());
    m_dSteps.pop_front();
    try {
      begin(bench, step);
    } catch (const std::exception& error) {
      m_sTrouble = error.what();  // nobody is there to whom it could be thrown
    }
  }
}

}  // namespace Osv::simulator
