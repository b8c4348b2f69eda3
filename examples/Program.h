#pragma once

#include <CLI/CLI.hpp>

#include <csignal>
#include <functional>
#include <ostream>
#include <string>

/// Parses the arguments and runs `body`, and returns its status: 2 with one line that says why if
/// either throws, 1 if the standard output cannot be written.
int run_program(CLI::App& app, int argc, char** argv, const std::function<int()>& body);

/// Refuses an empty name of a file, and an option in its place.
extern const CLI::Validator file_name;

/// Writes a file whole or not at all; throws std::runtime_error if it cannot be written.
void write_file(const std::string& path, const std::function<void(std::ostream&)>& write);

/// Whether the standard output is a terminal.
bool on_terminal();

/// Columns of the terminal; 80 where there is none.
unsigned int terminal_width();

/// Whether text may be coloured: on a terminal, unless NO_COLOR is set.
bool coloured();

/// From now on SIGINT and SIGTERM set `interrupted` instead of ending the program.
void catch_interrupts();
extern volatile std::sig_atomic_t interrupted;
