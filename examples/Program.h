#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

/// What a program that was asked for the right thing could not do.
struct Failure : std::runtime_error {
    using runtime_error::runtime_error;
};

/// Parses the arguments, runs `body` and returns the status: 0, or with one line that says why 1
/// for a Failure, also to write the standard output, and 2 for all else that is thrown.
int run_program(CLI::App& app, int argc, char** argv, const std::function<void()>& body);

/// Refuses an empty word, and an option in the place of one.
extern const CLI::Validator given;

/// Writes a file whole or not at all; throws std::runtime_error if it cannot be written.
void write_file(const std::string& path, const std::function<void(std::ostream&)>& write);
