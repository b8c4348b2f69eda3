// Builds a rotation from the command line, edits it, and shows every step as a timeline.

#include "Colour.h"
#include "CommandLine.h"
#include "Files.h"
#include "Picture.h"
#include "Terminal.h"
#include "Text.h"
#include "Timeline.h"
#include "parse.h"
#include <animationmodel/play.h>

#include <animationmodel/Rotation.h>

#include <chrono>
#include <clocale>
#include <cmath>
#include <iostream>
#include <langinfo.h>
#include <string_view>
#include <thread>

using namespace Kiv;

namespace {

struct Options {
    bool play = false;
    std::string svg;
    float pulse = 1, rest = 0;
    unsigned int rise = 4, fall = 10, step = 4;
};

/// Takes a number of at least 1 frame.
void take(const Words& words, unsigned int& frames) {
    const auto number = parse<unsigned int>(words[0]);
    if (number.value_or(0) == 0)
        throw std::runtime_error("cannot be " + in_quotes(words[0]) + ", but 1 or more frames");
    frames = *number;
}

/// Takes a finite number; one too small for a float is 0.
void take(const Words& words, float& value) {
    value = static_cast<float>(parse<double>(words[0]).value_or(NAN));
    if (!std::isfinite(value))
        throw std::runtime_error("cannot be " + in_quotes(words[0]));
}

std::vector<Option> described(Options& options) {
    const auto number = [](const char* name, const char* help, auto& value) -> Option {
        return {name, "", help, [&value](const Words& words) { take(words, value); }};
    };
    return {{"--play", "", "then plays the result on eight lights in the terminal, until Ctrl-C",
             [&](const Words&) { options.play = true; }},
            {"--svg", "FILE", "also writes the result as a picture that plays",
             [&](const Words& words) { options.svg = words[0]; }},
            number("PULSE", "the value that each output rises to (1)", options.pulse),
            number("REST", "the value that it falls back to (0)", options.rest),
            number("RISE", "frames that it rises, 1 or more (4)", options.rise),
            number("FALL", "frames that it falls, 1 or more (10)", options.fall),
            number("STEP", "frames after the output before it, 1 or more (4)", options.step)};
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

/// One light of a row: a coloured lamp, or a sign that is the denser the brighter the light is.
void print_lamp(std::optional<float> value, const ValueRange& range, bool lamps) {
    const int level = value ? range.level(*value) : 0;
    const Colour colour = value ? colour_of(level) : Colour{0, 0, 0};
    if (lamps)
        std::cout << "\x1b[38;2;" << colour.red << ';' << colour.green << ';' << colour.blue
                  << "m\u25cf\x1b[0m ";
    else
        std::cout << ".:-=+*#@"[level / 32] << ' ';
}

/// Plays on until interrupted.
void play(const Animation& animation) {
    const ValueRange range(animation);
    const unsigned int duration = animation.durationInFrames();
    const std::chrono::duration<double> frameTime(1.0 / static_cast<double>(animation.fps));
    std::setlocale(LC_CTYPE, "");
    const bool lamps = coloured() && std::string_view(nl_langinfo(CODESET)) == "UTF-8";
    Player player(animation.layers);
    catch_interrupts();
    const PlayingTerminal terminal;
    const auto start = std::chrono::steady_clock::now();
    for (std::uint64_t count = 0; interrupted == 0 && std::cout; ++count) {
        const auto frame = static_cast<unsigned int>(count % duration);
        player.seek(frame);
        std::cout << "\r  ";
        for (const Track& track : player)
            print_lamp(track.value(), range, lamps);
        std::cout << "frame " << frame << " of " << duration << "\x1b[K" << std::flush;
        std::this_thread::sleep_until(start + frameTime * static_cast<double>(count + 1));
    }
}

void run(const Options& options) {
    const std::vector<Step> steps = build(options);
    const Animation& result = steps[3].animation;
    if (!options.svg.empty())
        write_file(options.svg, [&](std::ostream& out) {
            write_svg(out, "A rotation with a flash, looped", result);
        });
    int number = 0;
    for (const Step& step : steps) {
        std::cout << ++number << ". " << step.title << '\n';
        print_timeline(std::cout, step.animation, terminal_width(), coloured());
        std::cout << '\n';
    }
    std::cout << "0>1 is a Transition, 1 a Hold, ~ a Wait\n";
    if (options.play && !on_terminal())
        throw Failure("--play needs a terminal");
    if (options.play)
        play(result);
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only memory can run out before the program runs
int main(int argc, char** argv) {
    Options options;
    const CommandLine line{"demo",
                           "A light that travels around eight outputs, edited step by step.",
                           described(options), [&] { run(options); }};
    return line.run(argc, argv);
}
