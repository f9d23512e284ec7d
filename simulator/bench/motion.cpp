#include "bench/motion.h"

#include <algorithm>

namespace Osv::simulator {
namespace {

constexpr Touch kAway = {};
constexpr Touch kSettled = {.contact = 1};

/// The strip that touches while a finger rolls: wide enough to be seen as a finger.
constexpr float kStrip = 0.4F;
constexpr float kOuterMiddle = 1 - kStrip;

constexpr unsigned int kComingFrames = 5;
constexpr unsigned int kLiftingFrames = 3;
constexpr unsigned int kTouchingFrames = 3;  // on one side, before a roll

Touch on_side(float middle) { return {.contact = 1, .middle = middle, .half_width = kStrip}; }

Touch mix(float part, const Touch& from, const Touch& to) {
  return {.contact = from.contact + part * (to.contact - from.contact),
          .middle = from.middle + part * (to.middle - from.middle),
          .half_width = to.half_width};
}

Touch without_contact(Touch touch) {
  touch.contact = 0;
  return touch;
}

}  // namespace

Motion::Motion(const Timeline& timeline) : m_bAgain(timeline.again) {
  add({timeline.empty, kAway, kAway, true});
  add({timeline.coming, kAway, kSettled, false});
  add({timeline.staying, kSettled, kSettled, true});
  add({timeline.lifting, kSettled, kAway, false});
}

void Motion::add(const Phase& phase) {
  m_vPhases.push_back(phase);
  m_nFrames += phase.frames;
}

void Motion::hold(const Touch& touch) { add({1, touch, touch, true}); }

Motion Motion::touching_down(const Touch& last) {
  Motion motion;
  if (last.contact < 1) {
    motion.add({kComingFrames, kAway, kSettled, false});
  }
  motion.hold(kSettled);
  return motion;
}

Motion Motion::lifting_off(const Touch& last) {
  Motion motion;
  if (last.contact > 0) {
    motion.add({kLiftingFrames, last, without_contact(last), false});
  }
  motion.hold(kAway);
  return motion;
}

Motion Motion::rolling(const Touch& last, eRoll roll, unsigned int frames) {
  const bool to_right = roll == eRoll::Right || roll == eRoll::RightAndBack;
  const bool back = roll == eRoll::RightAndBack || roll == eRoll::LeftAndBack;
  const Touch start = on_side(to_right ? -kOuterMiddle : kOuterMiddle);
  const Touch end = on_side(-start.middle);
  const unsigned int back_frames = back ? frames / 2 : 0;
  Motion motion;
  if (last != start) {
    motion.add({kTouchingFrames, without_contact(start), start, false});
  }
  motion.add({frames - back_frames, start, end, true});
  motion.add({back_frames, end, start, true});
  motion.hold(back_frames == 0 ? end : start);
  return motion;
}

Touch Motion::at(unsigned int frame) const {
  if (m_nFrames == 0) {
    return kAway;
  }
  frame = m_bAgain ? frame % m_nFrames : std::min(frame, m_nFrames - 1);
  auto phase = m_vPhases.begin();
  while (frame >= phase->frames) {
    frame -= phase->frames;
    ++phase;
  }
  const unsigned int part = phase->arrives ? frame : frame + 1;
  const unsigned int whole = phase->arrives ? phase->frames - 1 : phase->frames + 1;
  return whole == 0
             ? phase->to
             : mix(static_cast<float>(part) / static_cast<float>(whole), phase->from, phase->to);
}

}  // namespace Osv::simulator
