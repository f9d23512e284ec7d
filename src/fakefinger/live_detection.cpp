#include "fakefinger/live_detection.h"

#include <array>
#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "fakefinger/live_detection_lib.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned int kScores = 101;
constexpr char kSecurityLevel[] = "nSecurityLevel";
constexpr int kDecimal = 10;

using Curve = std::array<double, kScores>;
using Guard = std::lock_guard<std::recursive_mutex>;

bool is_known(double score) { return score != 0.0 && !std::isnan(score); }

/// The number in front of the first zero byte, 0 where there is none.
double to_number(const std::string& text) {
  std::istringstream in(text.c_str());
  in.exceptions(std::ios_base::badbit);  // otherwise a lack of memory gives a wrong number
  in.imbue(std::locale::classic());
  double number = 0.0;
  in >> number;
  return number;
}

/// One of the detector's rates at each whole score.
Curve read_curve(CLiveDetectionLib& detector, void* handle, const char* rate) {
  Curve curve{};
  for (unsigned int score = 0; score < kScores; ++score) {
    detector.SetProperty(handle, "dQueryScore", std::to_string(score).c_str());
    curve[score] = to_number(detector.GetProperty(handle, rate));
  }
  return curve;
}

/// The last score before `far` falls below `frr`; 0 when it never does. The last entries play no
/// part. Curves that start crossed give 4294967295, which no score reaches, and are to.
double find_crossing(const Curve& far, const Curve& frr) {
  for (std::uint32_t score = 0; score < kScores - 1; ++score) {
    const bool above = far[score] - frr[score] >= 0.0;  // false for not-a-number, too
    if (!above) {
      return score - 1U;
    }
  }
  return 0.0;
}

}  // namespace

/// A detector that runs, with its handle. The session owns it, and so does each operation for as
/// long as it is in the detector; it goes with the last of them.
class CLiveDetection::Instance {
 public:
  explicit Instance(std::recursive_mutex& detectorLock) : m_cDetectorLock(detectorLock) {
    const Guard lock(m_cDetectorLock);
    auto library = std::make_unique<CLiveDetectionLib>();
    m_hDetection = library->Create();
    m_pLibrary = std::move(library);
  }

  ~Instance() {
    const Guard lock(m_cDetectorLock);
    if (m_bDestroyHandle) {
      m_pLibrary->Destroy(&m_hDetection);
    }
    m_pLibrary.reset();
  }

  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  /// For who holds the detector's lock.
  template <typename Call>
  auto Ask(Call call) {
    return call(*m_pLibrary, m_hDetection);
  }

  /// Has the handle destroyed before the library goes; without it only the library does.
  void DestroyHandleAtTheEnd() { m_bDestroyHandle = true; }

 private:
  std::recursive_mutex& m_cDetectorLock;
  std::unique_ptr<CLiveDetectionLib> m_pLibrary;
  void* m_hDetection = nullptr;
  bool m_bDestroyHandle = false;  // written by one owner, read when the last has let go
};

template <typename Call>
auto CLiveDetection::Ask(Call call) const {
  // Let go only behind the instance: one that goes with this call has left the detector before
  // another can start it again.
  const Guard lock(m_cDetectorLock);
  const boost::shared_ptr<Instance> running = Running();
  if (running == nullptr) {
    throw ClLXException(error_text::DetectionDisabled, error_number::DetectionDisabled);
  }
  return running->Ask(call);
}

boost::shared_ptr<CLiveDetection::Instance> CLiveDetection::Running() const {
  const std::lock_guard<std::mutex> lock(m_cInstanceLock);
  return m_pDetectionLib;
}

void CLiveDetection::Init() {
  auto instance = boost::make_shared<Instance>(m_cDetectorLock);
  const std::lock_guard<std::mutex> lock(m_cInstanceLock);
  m_pDetectionLib.swap(instance);
}

void CLiveDetection::Uninit() {
  boost::shared_ptr<Instance> gone;
  {
    const std::lock_guard<std::mutex> lock(m_cInstanceLock);
    gone.swap(m_pDetectionLib);
  }
  if (gone != nullptr) {
    gone->DestroyHandleAtTheEnd();
  }
}

bool CLiveDetection::IsInit() const { return Running() != nullptr; }

void CLiveDetection::Reset() {
  Ask([](CLiveDetectionLib& detector, void* handle) { return detector.Reset(handle); });
}

void CLiveDetection::PushImage(int kind, const unsigned char* block, unsigned long size) {
  Ask([&](CLiveDetectionLib& detector, void* handle) {
    return detector.SetImage(handle, static_cast<EImage>(kind),
                             reinterpret_cast<const tagBITMAPINFOHEADER*>(block), size);
  });
}

double CLiveDetection::Lifeness(int* state) {
  return Ask([&](CLiveDetectionLib& detector, void* handle) {
    return detector.EvalLifeness(handle, state);
  });
}

void CLiveDetection::SetProperty(const char* name, const char* value) const {
  Ask([&](CLiveDetectionLib& detector, void* handle) {
    return detector.SetProperty(handle, name, value);
  });
}

std::string CLiveDetection::GetProperty(const char* name) const {
  return Ask([&](CLiveDetectionLib& detector, void* handle) {
    return detector.GetProperty(handle, name);
  });
}

std::string CLiveDetection::Version() const { return GetProperty("Version"); }

void CLiveDetection::SetSecurityLevel(unsigned int level) {
  std::array<char, 11> text{};  // ten digits and the terminator
  std::snprintf(text.data(), text.size(), "%u", level);
  SetProperty(kSecurityLevel, text.data());
}

unsigned int CLiveDetection::GetSecurityLevel() const {
  return static_cast<unsigned int>(
      std::strtoul(GetProperty(kSecurityLevel).c_str(), nullptr, kDecimal));
}

void CLiveDetection::SetFakeScore(double score) { m_dFakeScore = is_known(score) ? score : 1.0; }

double CLiveDetection::GetFakeScore() const {
  if (const double known = m_dFakeScore; is_known(known)) {
    return known;
  }
  return Ask([this](CLiveDetectionLib& detector, void* handle) {
    if (const double known = m_dFakeScore; is_known(known)) {
      return known;  // another thread has walked the curves meanwhile
    }
    const Curve frr = read_curve(detector, handle, "dQueryFRR");
    const Curve far = read_curve(detector, handle, "dQueryFAR");
    return m_dFakeScore.replace(0.0, find_crossing(far, frr));  // a client's threshold stays
  });
}

}  // namespace Osv::lx
