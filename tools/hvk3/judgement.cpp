#include "hvk3/judgement.h"

#include <array>
#include <cstring>
#include <utility>

#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr unsigned int kHandle = 1;

struct FrameInfo {
  double score = 0.0;
  int state = 0;
};

FrameInfo ask(Osv::lx::CurrentFrameInfoFunction function) {
  constexpr unsigned int kScoreAndState = 1;
  std::array<unsigned char, sizeof(double) + sizeof(int)> bytes = {};
  FrameInfo info;
  if (function(0, 0, kScoreAndState, bytes.data()) == 0) {
    std::memcpy(&info.score, bytes.data(), sizeof(info.score));
    std::memcpy(&info.state, bytes.data() + sizeof(info.score), sizeof(info.state));
  }
  return info;
}

}  // namespace

const char* name_of(eVerdict verdict) {
  constexpr std::array kNames = {"no-finger", "live", "fake"};
  return kNames.at(static_cast<std::size_t>(verdict));
}

Judge::Judge(Plugin& plugin, double threshold)
    : m_cGrabber(plugin.grabber()),
      m_pfnFrameInfo(
          plugin.function<Osv::lx::CurrentFrameInfoFunction>(Osv::lx::symbol::CurrentFrameInfo)),
      m_dThreshold(threshold) {
  check(m_cGrabber, m_cGrabber.EnableEvents(0, kHandle, &on_event, this));
}

Judge::~Judge() { m_cGrabber.EnableEvents(0, kHandle, nullptr, nullptr); }

void Judge::on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*grabber*/, unsigned int type,
                     void* user) {
  if (type == eFG_HVK3_FakeFinger) {
    static_cast<Judge*>(user)->m_bFake = true;
  }
}

void Judge::observe() {
  const FrameInfo info = ask(m_pfnFrameInfo);
  Judgement judgement{info.score, info.state, eVerdict::NoFinger};
  if (std::exchange(m_bFake, false)) {
    judgement.verdict = eVerdict::Fake;
  } else if (info.score > m_dThreshold) {
    judgement.verdict = eVerdict::Live;
  }  // neither: the detector found no finger that it could judge
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_cJudgements.push_back(judgement);
}

Judgement Judge::take() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  const Judgement judgement = m_cJudgements.front();
  m_cJudgements.pop_front();
  return judgement;
}

}  // namespace hvk3
