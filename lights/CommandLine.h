#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// A failure that no other arguments would mend: status 1.
struct Failure : std::runtime_error {
    using runtime_error::runtime_error;
};

using Words = std::vector<std::string>;

/// What may stand on a command line.
struct Option {
    std::string name;  ///< With dashes; without, a word that stands alone.
    std::string words; ///< Names of the words that have to follow it, such as "FROM TO".
    std::string help;  ///< What it is for.
    /// Is called with the words, each time it is given; throws std::runtime_error to refuse them.
    std::function<void(const Words&)> take;
};

struct CommandLine {
    /// Takes the options in the order they are given in, then runs `body`. Asked for help or the
    /// version, prints that instead. Returns the status:
    ///
    ///     0    all went well
    ///     1    `body` threw a Failure, or the standard output could not be written
    ///     2    anything else was thrown
    ///
    /// Where it is not 0, one line on the standard error says why.
    int run(int argc, char** argv) const;

    std::string name;
    std::string purpose;
    std::vector<Option> options;
    std::function<void()> body;
};

/// Says on the standard error, on a line after the name of the program, what is the matter.
void complain(const std::string& what);
