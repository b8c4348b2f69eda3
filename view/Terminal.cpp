#include "Terminal.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

volatile std::sig_atomic_t interrupted = 0;

bool on_terminal() {
    return isatty(STDOUT_FILENO) != 0;
}

unsigned int terminal_width() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

bool coloured() {
    return on_terminal() && std::getenv("NO_COLOR") == nullptr;
}

void catch_interrupts() {
    std::signal(SIGINT, [](int) { interrupted = 1; });
    std::signal(SIGTERM, [](int) { interrupted = 1; });
}

void Progress::at(double done, double all) {
    const auto now = std::chrono::steady_clock::now();
    if (now < next || isatty(STDERR_FILENO) == 0)
        return;
    next = now + std::chrono::milliseconds(100);
    // What is written next begins over the line.
    std::cerr << job << " ... " << std::floor(100 * done / all) << " %\x1b[K\r";
}
