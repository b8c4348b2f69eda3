#include "Program.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

int run_program(CLI::App& app, int argc, char** argv, const std::function<void()>& body) {
    const auto complain = [&](const std::exception& error, int status) {
        std::cerr << app.get_name() << ": " << error.what() << '\n';
        return status;
    };
    try {
        app.parse(argc, argv);
        body();
        if (!std::cout.flush())
            throw Failure("cannot write the standard output");
        return 0;
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const Failure& error) {
        return complain(error, 1);
    } catch (const std::exception& error) {
        return complain(error, 2);
    }
}

const CLI::Validator given(
    [](const std::string& text) {
        return text.empty() || text[0] == '-' ? "needs a word, not \"" + text + "\"" : "";
    },
    "");

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
