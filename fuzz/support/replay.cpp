#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "support/target.h"

/// @file
/// The place of libFuzzer in an ordinary build: PROGRAM FOLDER RUNS runs the files of a folder and
/// so many mutations of them, the same ones each time. The input of the last run stays in
/// PROGRAM.input, behind four bytes for its size.

namespace {

using Content = std::vector<std::uint8_t>;

constexpr unsigned int kSecondsForARun = 30;
constexpr std::size_t kMostEdits = 8;

std::vector<Content> read_folder(const char* folder) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Content> contents;
  for (const auto& path : paths) {
    std::ifstream in(path, std::ios::binary);
    contents.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return contents;
}

/// Makes inputs of the seeds by small edits, as libFuzzer does, but blindly.
class Mutator {
 public:
  explicit Mutator(const std::vector<Content>& seeds) : m_vSeeds(seeds) {}

  Content next() {
    Content content = any_seed();
    for (std::size_t edits = 1 + below(kMostEdits); edits > 0; --edits) {
      edit(content);
    }
    return content;
  }

 private:
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }
  const Content& any_seed() { return m_vSeeds[below(m_vSeeds.size())]; }
  static Content::iterator at(Content& content, std::size_t position) {
    return content.begin() + static_cast<std::ptrdiff_t>(position);
  }

  void edit(Content& content) {
    const std::size_t position = below(content.size());
    switch (below(5)) {
      case 0:
        content.insert(at(content, position), static_cast<std::uint8_t>(m_random()));
        break;
      case 1:
        content.resize(below(content.size() + 1));
        break;
      case 2:
        splice(content, position);
        break;
      default:
        change(content, position);
    }
  }

  /// Another byte, or one that differs in a bit.
  void change(Content& content, std::size_t position) {
    if (!content.empty()) {
      const std::size_t other = below(2) == 0 ? m_random() : content[position] ^ (1U << below(8));
      content[position] = static_cast<std::uint8_t>(other);
    }
  }

  /// Puts a piece of another seed in.
  void splice(Content& content, std::size_t position) {
    constexpr std::size_t kLongestPiece = 64;
    Content other = any_seed();
    const std::size_t from = below(other.size());
    const std::size_t size = std::min(below(kLongestPiece), other.size() - from);
    content.insert(at(content, position), at(other, from), at(other, from + size));
  }

  const std::vector<Content>& m_vSeeds;
  std::mt19937 m_random;
};

/// A file for the input of the run that is under way: in memory, so that it costs nothing, and
/// there when the process has gone.
class LastInput {
 public:
  explicit LastInput(const std::string& path)
      : m_nFile(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {
    if (ftruncate(m_nFile, kLongest) == 0) {
      m_pBytes = mmap(nullptr, kLongest, PROT_WRITE, MAP_SHARED, m_nFile, 0);
    }
  }
  ~LastInput() { close(m_nFile); }
  LastInput(const LastInput&) = delete;
  LastInput& operator=(const LastInput&) = delete;

  /// Puts its size in front.
  void keep(const Content& content) {
    const std::uint32_t size = static_cast<std::uint32_t>(content.size());
    if (m_pBytes != MAP_FAILED && size <= kLongest - sizeof(size)) {
      std::memcpy(m_pBytes, &size, sizeof(size));
      std::copy(content.begin(), content.end(),
                static_cast<Content::value_type*>(m_pBytes) + sizeof(size));
    }
  }

 private:
  static constexpr std::size_t kLongest = std::size_t{1} << 20;

  int m_nFile;
  void* m_pBytes = MAP_FAILED;
};

void run(const Content& content, LastInput& last) {
  last.keep(content);
  alarm(kSecondsForARun);  // ends the process: a run that takes so long is a finding
  LLVMFuzzerTestOneInput(content.data(), content.size());
  alarm(0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s FOLDER RUNS\n", argv[0]);
    return 2;
  }
  const std::string program = argv[0];
  LastInput last(program + ".input");
  const std::vector<Content> seeds = read_folder(argv[1]);
  if (seeds.empty()) {
    std::fprintf(stderr, "no files in %s\n", argv[1]);
    return 2;
  }
  for (const Content& seed : seeds) {
    run(seed, last);
  }
  Mutator mutator(seeds);
  const unsigned long runs = std::strtoul(argv[2], nullptr, 10);
  for (unsigned long i = 0; i < runs; ++i) {
    run(mutator.next(), last);
  }
  std::printf("%zu seeds, %lu mutations\n", seeds.size(), runs);
  return 0;
}
