#include "recorder/format/replay_report.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <boost/interprocess/file_mapping.hpp>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace Osv::recorder {

namespace interprocess = boost::interprocess;

/// As it is made, of zeros.
struct ReplayReport::Content {
  std::atomic<pid_t> player;  // the process whose calls count
  std::atomic<std::uint64_t> played;
  std::atomic<bool> has_trouble;
  std::atomic<int> status;  // written last
  std::uint64_t call;
  std::uint16_t function;
  std::array<char, 16384> text;  // cut, if need be
};

void ReplayReport::create(const std::string& path) {
  constexpr std::array<char, sizeof(Content)> kZeros = {};
  std::ofstream file;
  file.exceptions(std::ofstream::failbit | std::ofstream::badbit);
  file.open(path, std::ios::binary);
  file.write(kZeros.data(), kZeros.size()).flush();
}

ReplayReport::ReplayReport(const std::string& path)
    : m_cMemory(interprocess::file_mapping(path.c_str(), interprocess::read_write),
                interprocess::read_write, 0, sizeof(Content)) {
  static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
  if (std::filesystem::file_size(path) < sizeof(Content)) {
    throw std::runtime_error(path + " is no report of a replay");
  }
}

ReplayReport::Content& ReplayReport::content() const {
  return *static_cast<Content*>(m_cMemory.get_address());
}

void ReplayReport::begin() {
  pid_t none = 0;
  content().player.compare_exchange_strong(none, ::getpid());
}

void ReplayReport::played(std::uint64_t calls) {
  if (content().player == ::getpid()) {
    content().played = calls;
  }
}

void ReplayReport::end(const ReplayTrouble& trouble) {
  Content& told = content();
  if (told.has_trouble.exchange(true)) {
    return;
  }
  told.call = trouble.call;
  told.function = static_cast<std::uint16_t>(trouble.function);
  std::copy_n(trouble.text.begin(), std::min(trouble.text.size(), told.text.size()),
              told.text.begin());
  told.status = trouble.status;
}

bool ReplayReport::has_begun() const { return content().player != 0; }

std::uint64_t ReplayReport::played() const { return content().played; }

std::optional<ReplayTrouble> ReplayReport::trouble() const {
  const Content& told = content();
  if (told.status == 0 || told.function >= kFunctionCount) {
    return std::nullopt;
  }
  return ReplayTrouble{
      told.status, told.call, static_cast<eFunction>(told.function),
      std::string(told.text.data(), ::strnlen(told.text.data(), told.text.size()))};
}

}  // namespace Osv::recorder
