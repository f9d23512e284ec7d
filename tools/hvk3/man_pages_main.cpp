// Writes the manual's pages while the tool is built: hvk3_man_pages_writer FOLDER VERSION DATE

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "hvk3/command_line.h"
#include "hvk3/man_page.h"

namespace {

void write_pages(const CLI::App& command, const std::string& title,
                 const std::filesystem::path& folder, const hvk3::ManEdition& edition) {
  std::ofstream page(folder / (title + ".1"));
  page.exceptions(std::ios::failbit | std::ios::badbit);
  page << hvk3::man_page(command, title, edition) << std::flush;
  for (const CLI::App* const below :
       command.get_subcommands([](const CLI::App*) { return true; })) {
    write_pages(*below, title + '-' + below->get_name(), folder, edition);
  }
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kWords = 4;
  if (argc != kWords) {
    return EXIT_FAILURE;
  }
  try {
    std::filesystem::create_directories(argv[1]);
    hvk3::CommandLine line;
    write_pages(line.app(), "hvk3", argv[1], {.version = argv[2], .date = argv[3]});
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
