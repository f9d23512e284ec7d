// Writes the manual's page while the viewer is built: hvk3_view_man_page_writer FILE VERSION DATE

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "hvk3/man_page.h"
#include "view/view_options.h"

int main(int argc, char** argv) {
  constexpr int kWords = 4;
  if (argc != kWords) {
    return EXIT_FAILURE;
  }
  try {
    hvk3::view::CommandLine line;
    std::ofstream page(argv[1]);
    page.exceptions(std::ios::failbit | std::ios::badbit);
    page << hvk3::man_page(line.app(), "hvk3-view", {.version = argv[2], .date = argv[3]})
         << std::flush;
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
