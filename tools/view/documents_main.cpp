// Writes the manual's page and the completion for bash while the viewer is built:
// hvk3_view_documents_writer PAGE COMPLETION VERSION DATE

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "hvk3/completion.h"
#include "hvk3/man_page.h"
#include "view/view_options.h"

namespace {

void write(const char* path, const std::string& text) {
  std::ofstream file(path);
  file.exceptions(std::ios::failbit | std::ios::badbit);
  file << text << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kWords = 5;
  if (argc != kWords) {
    return EXIT_FAILURE;
  }
  try {
    hvk3::view::CommandLine line;
    write(argv[1], hvk3::man_page(line.app(), "hvk3-view", {.version = argv[3], .date = argv[4]}));
    write(argv[2], hvk3::bash_completion(line.app()));
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
