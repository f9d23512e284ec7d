#include "fakefinger/scripted_detector.h"

#include <algorithm>
#include <cstring>

namespace Osv::testing_support {

ScriptedDetector& detector() {
  static ScriptedDetector the_one;
  return the_one;
}

std::size_t ScriptedDetector::count(const std::string& text) const {
  return static_cast<std::size_t>(std::count_if(
      journal.begin(), journal.end(),
      [&](const std::string& line) { return line.compare(0, text.size(), text) == 0; }));
}

void ScriptedDetector::enter(const std::string& line) {
  note(line);
  if (entered) {
    entered();
  }
}

/// Handles are small numbers.
std::string ScriptedDetector::name_of(const void* handle) const {
  return std::to_string(reinterpret_cast<std::uintptr_t>(handle)) +
         (m_setDestroyed.contains(handle) ? " (destroyed)" : "");
}

long ScriptedDetector::code(const std::string& function) {
  const auto found = codes.find(function);
  return found == codes.end() ? 0 : found->second;
}

std::string ScriptedDetector::value(const std::string& name) {
  const bool is_frr = name == "dQueryFRR";
  if (is_frr || name == "dQueryFAR") {
    return (is_frr ? frr : far).at(std::stoul(properties["dQueryScore"]));
  }
  return properties[name];
}

long ScriptedDetector::Initialize(const void* reserved) {
  enter(reserved == nullptr ? "Initialize null" : "Initialize");
  return code("Initialize");
}

long ScriptedDetector::Uninitialize() {
  enter("Uninitialize");
  return code("Uninitialize");
}

long ScriptedDetector::CreateHandle(void** handle) {
  enter("CreateHandle");
  *handle = reinterpret_cast<void*>(static_cast<std::uintptr_t>(++m_nHandles));
  return code("CreateHandle");
}

long ScriptedDetector::DestroyHandle(void** handle) {
  enter("DestroyHandle " + name_of(*handle));
  m_setDestroyed.insert(*handle);
  return code("DestroyHandle");
}

long ScriptedDetector::Reset(const void* handle) {
  enter("Reset " + name_of(handle));
  return code("Reset");
}

long ScriptedDetector::EvaluateLiveliness(const void* handle, double* out) {
  enter("EvaluateLiveliness " + name_of(handle));
  *out = score;
  return code("EvaluateLiveliness");
}

long ScriptedDetector::SetImage(const void* handle, int kind, const tagBITMAPINFOHEADER* block,
                                unsigned long size) {
  enter("SetImage " + name_of(handle) + ' ' + std::to_string(kind) + ' ' +
        std::to_string(block->biWidth) + ' ' + std::to_string(size));
  return code("SetImage");
}

long ScriptedDetector::SetProperty(const void* handle, const char* name, const char* text) {
  enter("SetProperty " + name_of(handle) + ' ' + name + '=' + text);
  properties[name] = text;
  return writes_until_failure-- == 0 ? -15 : code("SetProperty");
}

long ScriptedDetector::GetProperty(const void* handle, const char* name, char* buffer,
                                   unsigned long* length) {
  enter("GetProperty " + name_of(handle) + ' ' + name +
        (buffer == nullptr ? " null " : " buffer ") + std::to_string(*length));
  if (get_property) {
    return get_property(buffer, length);
  }
  const std::string text = value(name);
  if (buffer == nullptr) {
    *length = text.size() + 1;
    return -21;
  }
  std::memcpy(buffer, text.c_str(), *length);
  return code("GetProperty");
}

char* ScriptedDetector::GetErrorDescription(long code_asked) {
  enter("GetErrorDescription " + std::to_string(code_asked));
  return const_cast<char*>(description);
}

}  // namespace Osv::testing_support
