#include "Terminal.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <string_view>
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

namespace {

constexpr std::string_view hidden = "\x1b[?25l\x1b[?7l";
constexpr std::string_view givenBack = "\r\x1b[K\x1b[?7h\x1b[?25h";

void put(std::string_view signs) {
    static_cast<void>(!write(STDOUT_FILENO, signs.data(), signs.size()));
}

void stop(int /*signal*/) {
    put(givenBack);
    raise(SIGSTOP); // it goes on here
    put(hidden);
}

} // namespace

PlayingTerminal::PlayingTerminal() {
    std::cout.flush();
    std::signal(SIGTSTP, stop);
    put(hidden);
}

PlayingTerminal::~PlayingTerminal() {
    std::cout.flush();
    put(givenBack);
    std::signal(SIGTSTP, SIG_DFL);
}

Progress::~Progress() {
    if (shown)
        std::cerr << "\x1b[K";
}

void Progress::operator()(double done, double all) {
    if (done < due)
        return;
    due = done + all / 65536; // or looking at the clock takes longer than the job
    const auto now = std::chrono::steady_clock::now();
    if (now < next || isatty(STDERR_FILENO) == 0)
        return;
    next = now + std::chrono::milliseconds(100);
    shown = true;
    // What is written next begins over the line, which does not go on in the next one.
    std::cerr << "\x1b[?7l" + job + " ... " +
                     std::to_string(all > 0 ? std::lround(std::floor(100 * done / all)) : 0) +
                     " %\x1b[K\r\x1b[?7h";
}
