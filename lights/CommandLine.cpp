#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

void add(CLI::App& app, const Option& option) {
    const bool dashes = option.name[0] == '-';
    const auto take = [&option](const Words& words) {
        try {
            option.take(words);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(option.name + ": " + error.what());
        }
    };
    if (dashes && option.words.empty()) {
        app.add_flag_callback(
               option.name, [take] { take({}); }, option.help)
            ->trigger_on_parse();
        return;
    }
    app.add_option_function<Words>(option.name, take, option.help)
        ->expected(static_cast<int>(1 + std::ranges::count(option.words, ' ')))
        ->allow_extra_args(false)
        ->type_name("")
        ->option_text(option.words)
        ->trigger_on_parse()
        ->check([dashes](const std::string& word) {
            const bool negative = word[0] == '-' && word[1] >= '0' && word[1] <= '9';
            const bool missing = word.empty() || (dashes && word[0] == '-' && !negative);
            return missing ? "needs a word, not \"" + word + "\"" : "";
        });
}

} // namespace

int CommandLine::run(int argc, char** argv) const {
    const auto complain = [&](const std::exception& error, int status) {
        std::cerr << name << ": " << error.what() << '\n';
        return status;
    };
    try {
        CLI::App app(purpose, name);
        for (const Option& option : options)
            add(app, option);
        try {
            Words words(argv + 1, argv + argc);
            for (std::string& word : words)
                if (word.starts_with("-.")) // a number, for which the parser wants a digit
                    word.insert(1, 1, '0');
            std::ranges::reverse(words); // as the parser takes them
            app.parse(words);
        } catch (const CLI::CallForHelp& help) {
            return app.exit(help);
        }
        body();
        if (!std::cout.flush())
            throw Failure("cannot write the standard output");
        return 0;
    } catch (const Failure& error) {
        return complain(error, 1);
    } catch (const std::exception& error) {
        return complain(error, 2);
    }
}

void write_file(const std::string& path, const std::function<void(std::ostream&)>& write) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error); // a link to a file stays one
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
