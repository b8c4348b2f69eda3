#include "Program.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <sys/ioctl.h>
#include <unistd.h>

namespace fs = std::filesystem;

volatile std::sig_atomic_t interrupted = 0;

int run_program(CLI::App& app, int argc, char** argv, const std::function<int()>& body) {
    const auto refusal = [](const CLI::App* program, const CLI::Error& error) {
        return program->get_name() + ": " + error.what() + "\n";
    };
    app.failure_message(refusal);
    int status = 0;
    try {
        app.parse(argc, argv);
        status = body();
    } catch (const CLI::ParseError& error) {
        status = app.exit(error) == 0 ? 0 : 2;
    } catch (const std::exception& error) {
        std::cerr << app.get_name() << ": " << error.what() << '\n';
        return 2;
    }
    if (std::cout.flush())
        return status;
    std::cerr << app.get_name() << ": cannot write the standard output\n";
    return 1;
}

const CLI::Validator file_name(
    [](const std::string& text) {
        return text.empty() || text[0] == '-' ? "needs a file, not \"" + text + "\"" : "";
    },
    "FILE");

void write_file(const std::string& path, const std::function<void(std::ostream&)>& write) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error); // a link stays one
    const bool special = fs::exists(target, error) && !fs::is_regular_file(target, error);
    const fs::path draft =
        special ? target : fs::path(target.string() + "." + std::to_string(getpid()));
    errno = 0;
    std::ofstream file(draft, std::ios::binary);
    try {
        if (file)
            write(file);
        file.close();
        if (!file)
            throw std::runtime_error("cannot write " + path +
                                     (errno != 0 ? ": " + std::string(std::strerror(errno)) : ""));
        if (!special)
            fs::rename(draft, target);
    } catch (...) {
        if (!special)
            fs::remove(draft, error);
        throw;
    }
}

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
