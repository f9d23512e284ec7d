#pragma once

/// @file
/// What every program's command line has, whatever else it takes.

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace hvk3 {

/// Its version, and its name in front of what it refuses.
void add_program_options(CLI::App& program);

/// Tells why parsing has ended, be it for the help, the version or a refusal, and how the program
/// ends then.
int end_parsing(const CLI::App& program, const CLI::ParseError& reason);

}  // namespace hvk3
