// Builds a rotation from the command line, edits it, and shows every step as a timeline.

#include "Timeline.h"

#include <animationmodel/Rotation.h>

#include <charconv>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unistd.h>

using namespace Kiv;

namespace {

constexpr const char* usage =
    R"(usage: demo [--play] [--svg FILE] [PULSE [REST [RISE [FALL [STEP]]]]]
A light that travels around eight outputs, edited step by step.
  PULSE REST      the values between which each output pulses (1 and 0)
  RISE FALL STEP  frames that it rises, falls, and comes after the one before (4, 10, 4)
  --play          then plays the result on eight lights in the terminal, until Ctrl-C
  --svg FILE      also writes the timeline of the result as a picture
)";

struct Options {
    bool play = false;
    std::string svg;
    float pulse = 1, rest = 0;
    unsigned int rise = 4, fall = 10, step = 4;
};

template <class Number>
void parse(std::string_view name, std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() ||
        !std::isfinite(static_cast<double>(number)))
        throw std::invalid_argument(std::string(name) + " cannot be \"" + std::string(text) + "\"");
}

Options parse(const std::vector<std::string_view>& args) {
    Options options;
    int place = 0;
    for (auto arg = args.begin(); arg != args.end(); ++arg) {
        if (*arg == "--play")
            options.play = true;
        else if (*arg == "--svg" && arg + 1 != args.end())
            options.svg = *++arg;
        else if (arg->starts_with("--"))
            throw std::invalid_argument("unknown or incomplete option " + std::string(*arg));
        else if (place == 0)
            parse("PULSE", *arg, options.pulse), ++place;
        else if (place == 1)
            parse("REST", *arg, options.rest), ++place;
        else if (place == 2)
            parse("RISE", *arg, options.rise), ++place;
        else if (place == 3)
            parse("FALL", *arg, options.fall), ++place;
        else if (place == 4)
            parse("STEP", *arg, options.step), ++place;
        else
            throw std::invalid_argument("one argument too many: " + std::string(*arg));
    }
    return options;
}

/// The same key row on all eight outputs.
LayerMap on_all_outputs(const Animation& rotation, const KeyVector& keys) {
    LayerMap layers;
    for (const auto& [name, layer] : rotation.layers)
        layers[name] = keys;
    return layers;
}

struct Step {
    std::string title;
    Animation animation;
};

std::vector<Step> build(const Options& options) {
    std::vector<Step> steps;
    Animation show =
        Rotation(options.pulse, options.rest, options.rise, options.fall, options.step);
    steps.push_back({"Rotation", show});

    // All outputs flash in the middle of the first revolution: keys are cut there.
    const unsigned int middle = show.introSize / 2 + 1;
    const AnimationKey flash({Hold, make_vector(options.pulse)}, 3);
    const AnimationKey fade({Transition, make_vector(options.pulse, options.rest)}, 6);
    show.insert(on_all_outputs(show, {flash, fade}), middle);
    steps.push_back({"insert: a flash on all outputs at frame " + std::to_string(middle), show});

    // Where an output would rest at the end, it glows once more; until then (Wait) it plays on.
    LayerMap glow;
    unsigned int rested = 0;
    for (const auto& [name, layer] : show.layers) {
        const unsigned int rest = 7 * options.step - rested;
        if (rested > 0)
            glow[name].emplace_back(Wait, rested);
        if (rest > 0)
            glow[name].push_back({{Transition, make_vector(options.pulse, options.rest)}, rest});
        rested += options.step;
    }
    const unsigned int end = show.durationInFrames() - 7 * options.step;
    show.overrideLayersWith(glow, end);
    steps.push_back({"overrideLayersWith: from frame " + std::to_string(end) +
                         " the outputs that rest glow once more",
                     show});

    show = show.loop(2, false, false);
    steps.push_back({"loop(2): the body plays twice", show});

    const auto pieces = show.splitAt(show.durationInFrames() / 2, true, true);
    steps.push_back({"splitAt: the first half", pieces.front()});
    steps.push_back({"splitAt: the second half", pieces.back()});
    return steps;
}

volatile std::sig_atomic_t interrupted = 0;

/// Plays on until interrupted; without colours a light shows by how dense its sign is.
void play(const Animation& animation, bool coloured) {
    const ValueRange range(animation);
    const unsigned int duration = animation.durationInFrames();
    const std::chrono::duration<double> frameTime(1.0 / static_cast<double>(animation.fps));
    std::signal(SIGINT, [](int) { interrupted = 1; });
    std::signal(SIGTERM, [](int) { interrupted = 1; });
    std::cout << "\x1b[?25l";
    const auto start = std::chrono::steady_clock::now();
    for (std::uint64_t count = 0; interrupted == 0 && duration > 0; ++count) {
        const auto frame = static_cast<unsigned int>(count % duration);
        std::cout << "\r  ";
        for (const auto& [name, layer] : animation.layers) {
            const auto value = value_at(layer, frame);
            const int level = value ? range.level(*value) : 0;
            const Colour colour = value ? colour_of(level) : Colour{0, 0, 0};
            if (coloured)
                std::cout << "\x1b[38;2;" << colour.red << ';' << colour.green << ';' << colour.blue
                          << "m\u25cf ";
            else
                std::cout << ".:-=+*#@"[level / 32] << ' ';
        }
        std::cout << (coloured ? "\x1b[0m frame " : " frame ") << frame << " of " << duration
                  << "\x1b[K" << std::flush;
        std::this_thread::sleep_until(start + frameTime * static_cast<double>(count + 1));
    }
    std::cout << "\r\x1b[K\x1b[?25h" << std::flush;
}

void run(const Options& options) {
    const std::vector<Step> steps = build(options);
    const Animation& result = steps[3].animation;
    if (!options.svg.empty()) {
        std::ofstream file(options.svg);
        write_svg(file, "A rotation with a flash, looped", result);
        file.close();
        if (!file)
            throw std::invalid_argument("cannot write " + options.svg);
    }
    const bool terminal = isatty(STDOUT_FILENO) != 0;
    const bool coloured = terminal && std::getenv("NO_COLOR") == nullptr;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        std::cout << i + 1 << ". " << steps[i].title << '\n';
        print_timeline(std::cout, steps[i].animation, 100, coloured);
        std::cout << '\n';
    }
    std::cout << "0>1 is a Transition, 1 a Hold, ~ a Wait\n";
    if (options.play && terminal)
        play(result, coloured);
    else if (options.play)
        std::cout << "(--play needs a terminal)\n";
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string_view> args(argv + 1, argv + argc);
        if (std::ranges::find(args, "--help") != args.end())
            std::cout << usage;
        else
            run(parse(args));
        return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::cerr << "demo: " << error.what() << '\n';
        return 2;
    }
}
