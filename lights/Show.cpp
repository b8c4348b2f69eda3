#include "Show.h"

#include "CommandLine.h"
#include "Dmx.h"
#include "Measures.h"
#include "Recording.h"

#include <animationmodel/json.h>

#include <cctype>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

using namespace Kiv;

namespace {

/// Makes an animation one at 1000 frames per second.
void move_to_milliseconds(Animation& show) {
    const double milliseconds = 1000 / static_cast<double>(show.fps); // a frame
    const double end = std::round(show.durationInFrames() * milliseconds);
    if (!(milliseconds > 0 && end <= mostFrames))
        throw std::runtime_error("at its frame rate the show would be too long");
    move_ends(show, [=](std::uint64_t frame) {
        const double moved = std::round(static_cast<double>(frame) * milliseconds);
        return static_cast<unsigned int>(std::min<double>(moved, mostFrames));
    });
    show.fps = 1000;
}

Animation show_of(const std::string& text) {
    Animation show = animation_from_json(text);
    for (auto& [name, keys] : std::exchange(show.layers, {})) {
        const auto [universe, channel] = channel_of(name);
        if (!show.layers.try_emplace(channel_name(universe, channel), std::move(keys)).second)
            throw std::runtime_error("the channel of layer \"" + name + "\" has another one");
    }
    move_to_milliseconds(show);
    return show;
}

} // namespace

Animation read_show(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const int first = file.peek(); // a pipe can be read only once
    if (first != '{' && std::isspace(first) == 0)
        return read_recording(file, path);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    try {
        return show_of(text);
    } catch (const std::exception& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

void write_show(const Animation& show, const std::string& path) {
    write_file(path, [&](std::ostream& out) {
        if (path.ends_with(".json"))
            out << animation_to_json(show);
        else
            write_recording(out, show);
    });
}

void move_ends(Animation& show, const std::function<unsigned int(std::uint64_t)>& moved) {
    const unsigned int duration = show.durationInFrames();
    const unsigned int outroStart = show.outroStartFrame();
    for (auto& [name, layer] : show.layers) {
        for_each_key(layer, [&](AnimationKey& key, unsigned int begin) {
            key.duration = moved(std::uint64_t{begin} + key.duration) - moved(begin);
        });
        std::erase_if(layer, [](const AnimationKey& key) { return key.duration == 0; });
    }
    show.introSize = moved(show.introSize);
    show.outroSize = moved(duration) - moved(outroStart);
}
