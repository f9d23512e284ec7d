#include "hvk3/judgement.h"

#include <array>
#include <cstring>
#include <utility>

#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr unsigned int kHandle = 1;

}  // namespace

const char* name_of(eVerdict verdict) {
  constexpr std::array kNames = {"no-finger", "live", "fake"};
  return kNames.at(static_cast<std::size_t>(verdict));
}

Judgement judge_frame(Osv::lx::CurrentFrameInfoFunction frame_info, bool fake, double threshold) {
  constexpr unsigned int kScoreAndState = 1;
  std::array<unsigned char, sizeof(double) + sizeof(int)> bytes = {};
  Judgement judgement;
  if (frame_info(0, 0, kScoreAndState, bytes.data()) == 0) {
    std::memcpy(&judgement.score, bytes.data(), sizeof(judgement.score));
    std::memcpy(&judgement.state, bytes.data() + sizeof(judgement.score), sizeof(judgement.state));
  }
  if (fake) {
    judgement.verdict = eVerdict::Fake;
  } else if (judgement.score > threshold) {
    judgement.verdict = eVerdict::Live;
  }  // neither: the detector found no finger that it could judge
  return judgement;
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
  const Judgement judgement =
      judge_frame(m_pfnFrameInfo, std::exchange(m_bFake, false), m_dThreshold);
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
