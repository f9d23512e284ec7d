#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <string>

#include "capture/framegrabber_sdk.h"
#include "capture/journal.h"
#include "detection/images.h"

namespace Osv::test {

/// A scanner side that writes down each call but its queries, and does as it is told. By default it
/// delivers gray frames that plain capture takes for a finger.
class FakeScanner : public lx::ClFramegrabberSDK {
 public:
  using Channel = lx::ClFrameGrabberChannel;
  using Bitmap = utilities::ClSimpleBitmap;
  using Action = std::function<void(Bitmap&)>;

  static constexpr unsigned long kWidth = 120;
  static constexpr unsigned long kHeight = 5;

  explicit FakeScanner(Journal& journal) : m_journal(journal) {}

  /// Tells what an operation does besides, in each of its calls; null for nothing. Not while
  /// capture runs.
  void when(const std::string& operation, Action action) {
    m_actions[operation] = std::move(action);
  }

  unsigned long InitializeSDK(Channel& /*channel*/) override {
    call("InitializeSDK");
    return 0;
  }
  void UninitializeSDK(Channel& /*channel*/) override { call("UninitializeSDK"); }
  unsigned long SetActiveChannel(Channel& /*channel*/, Bitmap& bitmap) override {
    if (shapes_bitmaps) {
      bitmap = gray_image(kWidth, kHeight, 255);
    }
    call("SetActiveChannel", bitmap);
    return 0;
  }
  void GetLiveBitmap(Channel& /*channel*/, Bitmap& bitmap) override {
    bitmap.SetBlack();
    for (unsigned long y = 0; y < bitmap.Height(); ++y) {
      fill_row(bitmap, y, static_cast<unsigned char>(100 + y));
    }
    call("GetLiveBitmap", bitmap);
  }
  bool WaitForPlainFinger(Channel& /*channel*/, Bitmap& bitmap) override {
    call("WaitForPlainFinger", bitmap);
    return finds_finger;
  }
  void StartLiveCapturing(Channel& /*channel*/) override { call("StartLiveCapturing"); }
  void StopLiveCapturing(Channel& /*channel*/) override { call("StopLiveCapturing"); }
  bool IsDirty(Channel& /*channel*/) override { return dirty; }
  bool HasSelfDetection(Channel& /*channel*/) override { return detects_itself; }
  bool Lock() override {
    call("Lock");
    return true;
  }
  void UnLock() override { call("UnLock"); }
  void TriggerImage(Channel& /*channel*/, Bitmap& bitmap) override { call("TriggerImage", bitmap); }
  void FreezeSDK(Channel& /*channel*/, bool freeze) override {
    call(freeze ? "FreezeSDK true" : "FreezeSDK false");
  }
  bool SupressFingerDetection() const override { return suppresses; }

  std::atomic<bool> dirty = false;
  std::atomic<bool> suppresses = false;
  bool shapes_bitmaps = true;
  bool detects_itself = false;
  bool finds_finger = false;

 private:
  void call(const std::string& operation) {
    Bitmap none;
    call(operation, none);
  }
  void call(const std::string& operation, Bitmap& bitmap) {
    m_journal.add(operation);
    const auto action = m_actions.find(operation);
    if (action != m_actions.end() && action->second != nullptr) {
      action->second(bitmap);
    }
  }

  Journal& m_journal;
  std::map<std::string, Action> m_actions;
};

}  // namespace Osv::test
