#include "soak/client_loop.h"

#include <array>
#include <stdexcept>

namespace Osv::soak {
namespace {

constexpr unsigned int kChannel = 1;
constexpr int kHandle = 7;
constexpr long kLiveFrames = 200;
constexpr long kFingers = 40;
constexpr unsigned long kNoScannerThere = 0x1000001B;
constexpr long kFreezePoll = 100'000'000;  // nanoseconds

/// Blocks until a counter has grown by so many.
void await(const std::atomic<long>& counter, long more) {
  const long target = counter + more;
  for (long seen = counter; seen < target; seen = counter) {
    counter.wait(seen);
  }
}

void count(std::atomic<long>& counter) {
  ++counter;
  counter.notify_all();
}

}  // namespace

ClientLoop::ClientLoop() : m_cBench(*ostrevan_simulator_bench()) {
  m_cBench.reset();
  m_cBench.set_pace(0);
  m_cBench.plug_in(1, {.serial = "HVK30002", .seed = 2});
  connect();
}

ClientLoop::~ClientLoop() { disconnect(); }

void ClientLoop::round(const test::Sleeps& sleeps) {
  live_capture();
  plain_capture();
  freezing(sleeps);
  unplugging();
  fake_fingers();
  idle_calls();
  change_of_scanner();
  new_grabber();
}

void ClientLoop::live_capture() {
  start(eCaptureLive);
  await(m_nLive, kLiveFrames);
  stop();
}

void ClientLoop::plain_capture() {
  m_cBench.set_timeline({5, 5, 30, 5, true});
  start(eCapturePlain);
  await(m_nFinger, kFingers);
  stop();
}

/// The worker looks at the freeze between two frames only: it is not over before it was seen.
void ClientLoop::freezing(const test::Sleeps& sleeps) {
  start(eCaptureLive);
  await(m_nLive, 2);
  const long polls = sleeps.nanosleeps(0, kFreezePoll);
  expect(m_pGrabber->Freeze(kChannel, true), 0, "Freeze");
  if (!sleeps.await_nanosleeps(0, kFreezePoll, polls + 1)) {
    throw std::runtime_error("A capture did not freeze.");
  }
  expect(m_pGrabber->Freeze(kChannel, false), 0, "Freeze");
  await(m_nLive, 2);
  stop();
}

/// The scanner goes in the middle of a capture; the same object captures again once it is back.
void ClientLoop::unplugging() {
  start(eCaptureLive);
  await(m_nLive, 2);
  const long errors = m_nErrors;
  const long stopped = m_nStopped;
  m_cBench.unplug(0);
  while (m_nStopped == stopped) {
    m_nStopped.wait(stopped);
  }
  expect(static_cast<unsigned long>(m_nErrors - errors), 1, "errors of an unplugged scanner");
  m_cBench.plug_in_again(0);
  expect(m_pGrabber->StopCapture(kChannel), 0, "StopCapture");
}

void ClientLoop::fake_fingers() {
  expect(m_pGrabber->SetFGProperty(ePropLiveliness, 1), 0, "ePropLiveliness");
  for (const auto kind : {simulator::eFingerKind::Live, simulator::eFingerKind::Printed}) {
    m_cBench.set_finger_kind(kind);
    start(eCapturePlain);
    await(m_nFinger, 2);
    stop();
  }
  m_cBench.set_finger_kind(simulator::eFingerKind::Live);
  expect(m_pGrabber->SetFGProperty(ePropLiveliness, 0), 0, "ePropLiveliness");
}

void ClientLoop::idle_calls() {
  unsigned char* image = nullptr;
  expect(m_pGrabber->GetImage(kChannel, &image), 0, "GetImage");
  expect(m_pGrabber->FreeImage(image), 0, "FreeImage");
  m_cBench.set_timeline(simulator::Timeline::empty_platen());
  double level = 0;
  expect(m_pGrabber->ContaminationDetection(kChannel, &level), 0, "ContaminationDetection");
  unsigned long devices = 2;
  std::array<DeviceInfo, 2> list = {};
  expect(m_pGrabber->AvailableDevices(list.data(), devices), 0, "AvailableDevices");
}

void ClientLoop::change_of_scanner() {
  for (const unsigned long index : {1UL, 0UL}) {
    expect(m_pGrabber->SetActiveDevice(index), 0, "SetActiveDevice");
    start(eCaptureLive);
    await(m_nLive, 2);
    stop();
  }
  expect(m_pGrabber->SetActiveDevice(127), kNoScannerThere, "SetActiveDevice");
}

void ClientLoop::new_grabber() {
  disconnect();
  connect();
  live_capture();
}

void ClientLoop::connect() {
  m_pGrabber = &m_cPlugin.grabber();
  m_pGrabber->SetCallbacks(kChannel, &ClientLoop::on_start, &ClientLoop::on_stop);
}

void ClientLoop::disconnect() {
  m_pGrabber->StopCapture(kChannel);
  m_cPlugin.destroy();
}

void ClientLoop::start(eCaptureModeIDs mode) {
  expect(m_pGrabber->StartCapture(kHandle, kChannel, mode, &ClientLoop::on_live,
                                  &ClientLoop::on_finger, &ClientLoop::on_error, nullptr, this),
         0, "StartCapture");
}

void ClientLoop::stop() {
  expect(m_pGrabber->StopCapture(kChannel), 0, "StopCapture");
  if (m_nStarted != m_nStopped) {
    throw std::runtime_error("A capture that started did not stop.");
  }
}

void ClientLoop::expect(unsigned long number, unsigned long expected, const std::string& what) {
  if (number != expected) {
    throw std::runtime_error(what + " gave " + std::to_string(number) + " at frame " +
                             std::to_string(frames()) + ": " + client::last_error(*m_pGrabber));
  }
}

void ClientLoop::on_start(int, unsigned int, void* user) { count(self(user).m_nStarted); }
void ClientLoop::on_stop(int, unsigned int, void* user) { count(self(user).m_nStopped); }
void ClientLoop::on_live(int, unsigned int, unsigned char*, void* user) {
  count(self(user).m_nLive);
}
void ClientLoop::on_finger(int, unsigned int, int, unsigned char*, void* user) {
  count(self(user).m_nFinger);
}
void ClientLoop::on_error(int, unsigned int, const char*, void* user) {
  count(self(user).m_nErrors);
}

}  // namespace Osv::soak
