#pragma once

#include <chrono>
#include <csignal>
#include <string>

/// Whether the standard output is a terminal.
bool on_terminal();

/// Columns of the terminal; 80 where there is none.
unsigned int terminal_width();

/// Whether text may be coloured: on a terminal, unless NO_COLOR is set.
bool coloured();

/// From now on SIGINT and SIGTERM set `interrupted` instead of ending the program.
void catch_interrupts();
extern volatile std::sig_atomic_t interrupted;

/// Shows on stderr, if that is a terminal, how far a job has come that takes longer than a second.
struct Progress {
    void at(double done, double all);

    std::string job;
    std::chrono::steady_clock::time_point next =
        std::chrono::steady_clock::now() + std::chrono::seconds(1);
};
