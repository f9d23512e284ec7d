#include "hvk3/recording/recording_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "hvk3/failure.h"
#include "recorder/format/block_file.h"

namespace hvk3 {
namespace {

using Osv::recorder::beyond_the_standard_ones;
using Osv::recorder::BlockWriter;
using Osv::recorder::Bytes;
using Osv::recorder::Descriptor;
using Osv::recorder::kMagic;

[[noreturn]] void throw_failure(const std::string& path, const std::string& why) {
  throw Failure(ExitStatus::OutputFailed, path + ": " + why);
}

[[noreturn]] void throw_system_failure(const std::string& path) {
  throw_failure(path, std::generic_category().message(errno));
}

/// Whether nothing is lost with this file.
bool may_be_replaced(const std::string& path, const struct stat& status) {
  if (!S_ISREG(status.st_mode) || status.st_size == 0) {
    return S_ISREG(status.st_mode);
  }
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  std::array<char, sizeof(kMagic)> begin = {};
  return file.get() >= 0 &&
         ::read(file.get(), begin.data(), begin.size()) == ssize_t{sizeof(kMagic)} &&
         std::equal(begin.begin(), begin.end(), kMagic);
}

void make_room(const std::string& path) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) {
    return;
  }
  if (!may_be_replaced(path, status)) {
    throw_failure(path, "this is no recording, and is not overwritten");
  }
  if (::unlink(path.c_str()) != 0) {
    throw_system_failure(path);
  }
}

}  // namespace

std::string create_recording(const std::string& path, const Osv::recorder::Header& header) {
  make_room(path);
  constexpr mode_t kForTheUserAlone = 0600;
  Descriptor file = beyond_the_standard_ones(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kForTheUserAlone));
  if (file.get() < 0 || ::fchmod(file.get(), kForTheUserAlone) != 0) {
    throw_system_failure(path);
  }
  try {
    BlockWriter writer(std::move(file));
    Bytes entry;
    append_header(entry, header);
    writer.write_prologue();
    writer.write(entry);
  } catch (const std::system_error& error) {
    throw_failure(path, error.code().message());
  }
  return std::filesystem::absolute(path).string();
}

}  // namespace hvk3
