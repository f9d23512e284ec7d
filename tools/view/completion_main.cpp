// Writes the completion for bash while the viewer is built: hvk3_view_completion_writer FILE

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "hvk3/completion.h"
#include "view/view_options.h"

int main(int argc, char** argv) {
  constexpr int kWords = 2;
  if (argc != kWords) {
    return EXIT_FAILURE;
  }
  try {
    hvk3::view::CommandLine line;
    std::ofstream script(argv[1]);
    script.exceptions(std::ios::failbit | std::ios::badbit);
    script << hvk3::bash_completion(line.app()) << std::flush;
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
