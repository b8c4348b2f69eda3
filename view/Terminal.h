#pragma once

#include "Text.h"

#include <chrono>
#include <csignal>
#include <string>
#include <string_view>

/// Whether the standard output is a terminal.
bool on_terminal();

/// Columns of the terminal; 80 where there is none.
unsigned int terminal_width();

/// Whether text may be coloured: on a terminal, unless NO_COLOR is set.
bool coloured();

/// From now on SIGINT and SIGTERM set `interrupted` instead of ending the program.
void catch_interrupts();
extern volatile std::sig_atomic_t interrupted;

/// Hides the cursor of the terminal as long as this lives, and lets no line go on in the next one.
/// While the program is stopped, as by Ctrl-Z, the terminal is as it was.
class PlayingTerminal {
public:
    PlayingTerminal();
    PlayingTerminal(const PlayingTerminal&) = delete;
    PlayingTerminal& operator=(const PlayingTerminal&) = delete;
    ~PlayingTerminal();
};

/// Shows on stderr, if that is a terminal, how far a job has come that takes longer than a second:
/// what it is called with. `all` is 0 where nobody knows it.
class Progress {
public:
    explicit Progress(std::string_view job) : job(printable(job)) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void operator()(double done, double all);

private:
    std::string job;
    double due = 0; ///< What has to be done before the clock is looked at again.
    std::chrono::steady_clock::time_point next =
        std::chrono::steady_clock::now() + std::chrono::seconds(1);
    bool shown = false;
};
