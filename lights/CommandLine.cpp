#include "CommandLine.h"

#include "Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

namespace {

std::string program;

/// What stands before a word that the parser shall take for no option.
constexpr char mark = '\x01';

/// `-.5` is a number and `-.x` a file, but the parser wants another sign after the dash.
std::string marked(std::string word) {
    return word.starts_with("-.") || word.starts_with(mark) ? word.insert(0, 1, mark) : word;
}
std::string unmarked(const std::string& word) {
    return word.starts_with(mark) ? word.substr(1) : word;
}

void add(CLI::App& app, const Option& option) {
    const bool dashes = option.name[0] == '-';
    const auto take = [&option](Words words) {
        std::ranges::transform(words, words.begin(), unmarked);
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
            const bool isOption =
                word[0] == '-' && word[1] != 0 && (word[1] < '0' || word[1] > '9');
            const bool missing = word.empty() || (dashes && isOption);
            return missing ? "needs a word, not " + in_quotes(word) : "";
        });
}

} // namespace

void complain(const std::string& what) {
    std::cerr << printable(program + ": " + what) + "\n";
}

int CommandLine::run(int argc, char** argv) const {
    program = name;
    std::ios::sync_with_stdio(false); // or reading costs a call for each byte
    const auto fail = [](const std::string& what, int status) {
        complain(what);
        return status;
    };
    try {
        CLI::App app(purpose, name);
        app.set_version_flag("--version", name + " " KIV_VERSION, "prints the version");
        for (const Option& option : options)
            add(app, option);
        try {
            Words words(argv + 1, argv + argc);
            std::ranges::transform(words, words.begin(), marked);
            std::ranges::reverse(words); // as the parser takes them
            app.parse(words);
            body();
        } catch (const CLI::Success& asked) { // for the help, or the version
            app.exit(asked);
        } catch (const CLI::ParseError& error) {
            std::string what = error.what();
            std::erase(what, mark);
            throw std::runtime_error(what);
        }
        if (!std::cout.flush())
            throw Failure("cannot write the standard output");
        return 0;
    } catch (const Failure& error) {
        return fail(error.what(), 1);
    } catch (const std::bad_alloc&) {
        return fail("the memory does not suffice", 1);
    } catch (const std::exception& error) {
        return fail(error.what(), 2);
    }
}
