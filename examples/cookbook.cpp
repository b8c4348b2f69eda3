// The recipes of docs/cookbook.md. Prints a timeline of what each of them makes; with a folder,
// also writes that into files there, as JSON.

#include "Timeline.h"
#include <animationmodel/json.h>
#include <animationmodel/play.h>
#include <animationmodel/retime.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>

using namespace Kiv;

namespace {

// The cookbook begins here.
Animation reversed(Animation show) {
    for (auto& [name, keys] : show.layers) {
        std::reverse(keys.begin(), keys.end());
        for (AnimationKey& key : keys)
            std::reverse(key.command.args.begin(), key.command.args.end());
    }
    std::swap(show.introSize, show.outroSize);
    return show;
}

Animation there_and_back(Animation show) {
    show.pushBack(reversed(show), /*keepOutro=*/true, /*keepIntro=*/true);
    return show;
}

KeyVector along(const std::function<double(double)>& curve, unsigned int frames, double error) {
    const auto at = [&](unsigned int frame) { return curve(double(frame) / frames); };
    const auto straight = [&](unsigned int begin, unsigned int end) {
        for (unsigned int frame = begin; frame < end; ++frame) {
            const double way = at(end) - at(begin);
            const double line = at(begin) + way * (frame - begin) / (end - begin);
            if (std::abs(line - at(frame)) > error)
                return false;
        }
        return true;
    };
    KeyVector keys;
    for (unsigned int begin = 0, end = 0; begin < frames; begin = end) {
        while (end == begin || (end < frames && straight(begin, end + 1)))
            ++end;
        keys.push_back({{Transition, {float(at(begin)), float(at(end))}}, end - begin});
    }
    return keys;
}

double ease_in_and_out(double x) {
    return x * x * (3 - 2 * x);
}

Animation with_gamma(const Animation& show, double gamma, double error) {
    Animation result = show;
    for (auto& [name, keys] : result.layers) {
        keys.clear();
        for (const AnimationKey& key : show.layers.at(name)) {
            const AnimationKeyArgs& args = key.command.args;
            const auto curve = [&](double x) {
                return std::pow(args.front() + (double(args.back()) - args.front()) * x, gamma);
            };
            if (key.command.effect == Transition)
                result.pushBackInLayer(name, along(curve, key.duration, error));
            else if (key.command.effect == Hold)
                result.pushBackInLayer(name, Hold, {float(curve(0))}, key.duration);
            else
                result.pushBackInLayer(name, key);
        }
    }
    return result;
}

Animation staggered(const KeyVector& keys, unsigned int lamps, unsigned int step) {
    Animation ring;
    const Animation one({{"lamp", keys}});
    const unsigned int frames = one.durationInFrames();
    for (unsigned int lamp = 0; lamp < lamps; ++lamp) {
        const auto parts = one.splitAt(frames - lamp * step % frames, false, false);
        const std::string name = "lamp " + std::to_string(lamp);
        ring.pushBackInLayer(name, parts[1].layer("lamp")); // what goes over the end comes first
        ring.pushBackInLayer(name, parts[0].layer("lamp"));
    }
    return ring;
}

Animation crossfaded(Animation first, Animation second, unsigned int frames) {
    const unsigned int begin = first.durationInFrames() - frames;
    Animation mixed;
    for (const auto& [name, keys] : first.layers) {
        Track from(name, keys);
        Track to(name, second.layers.at(name));
        for (unsigned int frame = 0; frame < frames; ++frame) {
            from.seek(begin + frame);
            to.seek(frame);
            const double way = double(*to.value()) - *from.value();
            const double value = *from.value() + way * (frame + 1) / (frames + 1);
            mixed.pushBackInLayer(name, Hold, {float(value)}, 1);
        }
    }
    first.remove(begin, frames);
    first.pushBack(mixed, /*keepOutro=*/true, /*keepIntro=*/true);
    second.remove(0, frames);
    first.pushBack(second, /*keepOutro=*/true, /*keepIntro=*/true);
    return first;
}

using Colour = std::array<float, 3>;

void fade_colour(Animation& show, const std::string& lamp, const Colour& from, const Colour& to,
                 unsigned int frames) {
    const std::array<std::string, 3> names = {" red", " green", " blue"};
    for (std::size_t i = 0; i < names.size(); ++i)
        show.pushBackInLayer(lamp + names[i], Transition, {from[i], to[i]}, frames);
}

void snap(Animation& show, unsigned int beat) {
    const float fps = show.fps;
    change_frame_rate(show, fps / float(beat)); // now a frame lasts a beat
    change_frame_rate(show, fps);
}

void override_softly(Animation& show, const std::string& name, KeyVector keys, unsigned int frame,
                     unsigned int ramp) {
    const unsigned int frames = Animation::durationInFramesOf(keys) + 2 * ramp;
    Track track(name, show.layers.at(name));
    track.seek(frame);
    const float before = *track.value();
    track.seek(frame + frames);
    const float after = *track.value();
    const float first = keys.front().command.args.front();
    const float last = keys.back().command.args.back();
    keys.insert(keys.begin(), {{Transition, {before, first}}, ramp});
    keys.push_back({{Transition, {last, after}}, ramp});
    show.replaceInLayer(name, frame, frames, keys);
}

KeyVector joined(const KeyVector& keys) {
    KeyVector result;
    for (const AnimationKey& key : keys) {
        if (!result.empty() && result.back().command.effect == key.command.effect) {
            AnimationKey both = result.back();
            both.duration += key.duration;
            if (!key.command.args.empty())
                both.command.args.back() = key.command.args.back();
            if (both.splitAt(result.back().duration) == KeyVector{result.back(), key}) {
                result.back() = both;
                continue;
            }
        }
        result.push_back(key);
    }
    return result;
}

struct Snapshot {
    std::map<std::string, std::shared_ptr<const KeyVector>> layers;
    unsigned int introSize, outroSize;
    float fps;
};

Snapshot snapshot_of(const Animation& show, const Snapshot& before) {
    Snapshot now{{}, show.introSize, show.outroSize, show.fps};
    for (const auto& [name, keys] : show.layers) {
        const auto old = before.layers.find(name);
        const bool same = old != before.layers.end() && *old->second == keys;
        now.layers[name] = same ? old->second : std::make_shared<const KeyVector>(keys);
    }
    return now;
}

Animation restored(const Snapshot& then) {
    Animation show(then.fps);
    for (const auto& [name, keys] : then.layers)
        show.layers[name] = *keys;
    show.introSize = then.introSize;
    show.outroSize = then.outroSize;
    return show;
}

Animation stairs(unsigned int steps, unsigned int delay, unsigned int fade) {
    Animation show;
    const unsigned int rest = (steps - 1) * delay; // from the first step to the last
    for (unsigned int step = 0; step < steps; ++step) {
        const std::string name = "step " + std::to_string(step);
        show.insertInLayer(name, Transition, {0, 1}, fade, step * delay);
        show.pushBackInLayer(name, Hold, {1}, rest + 1); // the body is the one frame more
        show.pushBackInLayer(name, Transition, {1, 0}, fade);
    }
    show.introSize = rest + fade;
    show.outroSize = rest + fade;
    return Animation(show); // a copy, in which layers are filled up
}

unsigned int play(const Animation& show, const std::function<bool(unsigned int)>& told) {
    unsigned int played = 0;
    Player player(show.layers);
    for (Playhead head(show); !head.ended(); head.next()) {
        player.seek(head.frame()); // and send what its tracks have
        if (told(++played))
            head.finish();
    }
    return played;
}
// The cookbook ends here.

std::string folder;

/// Prints what a recipe makes, after the code that calls it.
void print(const std::string& code, const std::string& name, const Animation& show) {
    std::cout << code << ";\n";
    print_timeline(std::cout, show, 80, /*coloured=*/false);
    if (!folder.empty())
        std::ofstream(folder + "/" + name + ".json") << animation_to_json(show);
}

/// What the code makes of a show.
#define RECIPE(name, start, ...)                                                                   \
    {                                                                                              \
        Animation show = start;                                                                    \
        __VA_ARGS__;                                                                               \
        print(#__VA_ARGS__, name, show);                                                           \
    }

/// What an expression is.
#define SHOW(question) std::cout << #question " is " << (question) << '\n'

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a recipe that throws fails the tests
int main(int argc, char** argv) {
    folder = argc > 1 ? argv[1] : "";
    std::cout << std::boolalpha;
    const KeyVector fade = {{{Transition, {0, 1}}, 10}, {{Hold, {1}}, 10}};
    const Animation lamp({{"lamp", fade}});
    const Animation dark({{"lamp", {{{Hold, {0}}, 12}}}});
    const Animation duet({{"bell", fade}, {"lamp", fade}});
    const KeyVector pulse = {
        {{Transition, {0, 1}}, 4}, {{Transition, {1, 0}}, 8}, {{Hold, {0}}, 8}};
    const Colour amber = {1, 0.5F, 0};
    const Colour blue = {0, 0.1F, 1};

    RECIPE("lamp", Animation(), show = lamp)
    RECIPE("reversed", lamp, show = reversed(show))
    RECIPE("there_and_back", lamp, show = there_and_back(show))
    RECIPE("eased", Animation(), show.pushBackInLayer("lamp", along(ease_in_and_out, 70, 0.01)))
    RECIPE("gamma", lamp, show = with_gamma(show, 2.2, 0.03))
    RECIPE("staggered", Animation(), show = staggered(pulse, 5, 4))
    RECIPE("crossfaded", lamp, show = crossfaded(show, dark, 4))
    RECIPE("colours", Animation(), fade_colour(show, "lamp", amber, blue, 20))
    RECIPE("snapped", lamp, show.insertInLayer("lamp", Hold, {0}, 5, 7); snap(show, 8))
    RECIPE("softly", lamp, override_softly(show, "lamp", {{{Hold, {0}}, 6}}, 6, 3))
    RECIPE("joined", lamp, show.removeInLayer("lamp", 4, 0);
           show.layers.at("lamp") = joined(show.layer("lamp")))
    const Snapshot first = snapshot_of(duet, {});
    Animation edited = duet;
    edited.replaceInLayer("lamp", 5, 10, Hold, {0}, 10);
    const Snapshot second = snapshot_of(edited, first);
    RECIPE("edited", edited, show = restored(second))
    RECIPE("undone", edited, show = restored(first))
    SHOW(first.layers.at("bell") == second.layers.at("bell"));
    SHOW(first.layers.at("lamp") == second.layers.at("lamp"));
    RECIPE("stairs", Animation(), show = stairs(4, 5, 3))
    SHOW(play(stairs(4, 5, 3), [](unsigned int played) { return played == 100; }));
}
