#include "fakefinger/live_detection.h"

#include <array>
#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <locale>
#include <sstream>
#include <utility>

#include "fakefinger/live_detection_lib.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned int kScores = 101;
constexpr char kSecurityLevel[] = "nSecurityLevel";

using Curve = std::array<double, kScores>;

bool is_known(double score) { return score != 0.0 && !std::isnan(score); }

std::string to_text(double number) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out << number;
  return out.str();
}

/// The number in front of the first zero byte, 0 where there is none.
double to_number(const std::string& text) {
  std::istringstream in(text.substr(0, text.find('\0')));
  in.imbue(std::locale::classic());
  double number = 0.0;
  in >> number;
  return number;
}

/// One of the detector's rates at each whole score.
Curve read_curve(const CLiveDetection& session, const char* rate) {
  Curve curve{};
  for (unsigned int score = 0; score < kScores; ++score) {
    session.SetProperty("dQueryScore", to_text(score).c_str());
    curve[score] = to_number(session.GetProperty(rate));
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

/// What an operation works with; it keeps the library loaded until the operation is done.
struct CLiveDetection::Instance {
  boost::shared_ptr<CLiveDetectionLib> library;
  void* handle = nullptr;
};

CLiveDetection::Instance CLiveDetection::Running() const {
  Instance instance;
  {
    const std::lock_guard<std::mutex> lock(m_cInstanceLock);
    instance = {m_pDetectionLib, m_hDetection};
  }
  if (instance.library == nullptr) {
    throw ClLXException(error_text::DetectionDisabled, error_number::DetectionDisabled);
  }
  return instance;
}

void CLiveDetection::Init() {
  auto library = boost::make_shared<CLiveDetectionLib>();
  void* const handle = library->Create();
  const std::lock_guard<std::mutex> lock(m_cInstanceLock);
  m_pDetectionLib.swap(library);
  m_hDetection = handle;
}

void CLiveDetection::Uninit() {
  Instance instance;
  {
    const std::lock_guard<std::mutex> lock(m_cInstanceLock);
    instance.library.swap(m_pDetectionLib);
    std::swap(instance.handle, m_hDetection);
  }
  if (instance.library != nullptr) {
    instance.library->Destroy(&instance.handle);
  }
}

bool CLiveDetection::IsInit() const {
  const std::lock_guard<std::mutex> lock(m_cInstanceLock);
  return m_pDetectionLib != nullptr;
}

void CLiveDetection::Reset() {
  const Instance running = Running();
  running.library->Reset(running.handle);
}

void CLiveDetection::PushImage(int kind, const unsigned char* block, unsigned long size) {
  const Instance running = Running();
  running.library->SetImage(running.handle, static_cast<EImage>(kind),
                            reinterpret_cast<const tagBITMAPINFOHEADER*>(block), size);
}

double CLiveDetection::Lifeness(int* state) {
  const Instance running = Running();
  return running.library->EvalLifeness(running.handle, state);
}

void CLiveDetection::SetProperty(const char* name, const char* value) const {
  const Instance running = Running();
  running.library->SetProperty(running.handle, name, value);
}

std::string CLiveDetection::GetProperty(const char* name) const {
  const Instance running = Running();
  return running.library->GetProperty(running.handle, name);
}

std::string CLiveDetection::Version() const { return GetProperty("Version"); }

void CLiveDetection::SetSecurityLevel(unsigned int level) {
  std::array<char, 11> text{};  // ten digits and the terminator
  std::snprintf(text.data(), text.size(), "%u", level);
  SetProperty(kSecurityLevel, text.data());
}

unsigned int CLiveDetection::GetSecurityLevel() const {
  unsigned int level = 0;
  const int converted = std::sscanf(GetProperty(kSecurityLevel).c_str(), "%u", &level);
  return converted == 1 ? level : 0;
}

void CLiveDetection::SetFakeScore(double score) { m_dFakeScore = is_known(score) ? score : 1.0; }

double CLiveDetection::GetFakeScore() const {
  if (const double known = m_dFakeScore; is_known(known)) {
    return known;
  }
  const Curve frr = read_curve(*this, "dQueryFRR");
  const Curve far = read_curve(*this, "dQueryFAR");
  const double found = find_crossing(far, frr);
  m_dFakeScore = found;
  return found;
}

}  // namespace Osv::lx
