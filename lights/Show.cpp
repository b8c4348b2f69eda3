#include "Show.h"

#include "Dmx.h"
#include "Files.h"
#include "Fseq.h"
#include "Recording.h"
#include "ShowLimits.h"
#include "Terminal.h"

#include <animationmodel/json.h>
#include <animationmodel/retime.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

using namespace Kiv;

namespace {

Animation show_of(const std::string& text, const std::string& file) {
    Progress progress("reading " + file);
    Animation show = animation_from_json(text, std::ref(progress));
    for (auto& [name, keys] : std::exchange(show.layers, {})) {
        const auto [universe, channel] = channel_of(name);
        if (!show.layers.try_emplace(channel_name(universe, channel), std::move(keys)).second)
            throw std::runtime_error("the channel of layer \"" + name + "\" has another one");
    }
    change_frame_rate(show, 1000);
    return show;
}

Animation take_rendered(Sequence sequence, Rendering& rendering) {
    if (!rendering.read) {
        rendering.read = sequence.step;
        rendering.media = std::move(sequence.media);
    }
    return std::move(sequence.show);
}

/// Whether a channel waits, or ends before the show.
bool waits(const Animation& show) {
    const std::uint64_t duration = full_duration(show.layers);
    return std::any_of(show.layers.begin(), show.layers.end(), [&](const auto& layer) {
        std::uint64_t end = 0;
        for (const AnimationKey& key : layer.second)
            end = key.command.effect == Wait ? duration + 1 : end + key.duration;
        return end != duration;
    });
}

/// Of the three bytes that some programs write before a text, those that are there.
void skip_byte_order_mark(std::istream& in) {
    for (const int byte : {0xef, 0xbb, 0xbf})
        if (in.peek() == byte)
            in.get();
}

} // namespace

Animation read_show(const std::string& path, Rendering& rendering) {
    const auto tell = [&rendering](const char* format) {
        if (rendering.format.empty())
            rendering.format = format;
    };
    InputFile file(path);
    skip_byte_order_mark(*file.stream);
    const int first = file.stream->peek(); // a pipe can be read only once
    if (first == 'P') {
        tell("FSEQ");
        return take_rendered(read_fseq(*file.stream, file.name, limits.bytes < unlimited.bytes),
                             rendering);
    }
    const std::string_view begins(" \t\r\n{[\"/#"); // what JSON, or what looks like it, begins with
    if (first == EOF || begins.find(static_cast<char>(first)) == std::string_view::npos) {
        tell("recording");
        return read_recording(*file.stream, file.name);
    }
    tell("JSON");
    const std::string text = file.text();
    try {
        return show_of(text, file.name);
    } catch (const std::exception& error) {
        throw std::runtime_error(file.name + ": " + error.what());
    }
}

void write_show(const Animation& show, const std::string& path, const Rendering& rendering,
                std::ostream& out) {
    if (path.ends_with(".json")) {
        Progress progress("writing");
        out << animation_to_json(show, std::ref(progress));
    } else if (path.ends_with(".fseq")) {
        if (!waits(show))
            return write_fseq(out, show, rendering.step(), rendering.media);
        Animation played = show;
        settle(played.layers);
        write_fseq(out, played, rendering.step(), rendering.media);
    } else {
        write_recording(out, show);
    }
}

void write_show(const Animation& show, const std::string& path, const Rendering& rendering) {
    write_file(path, [&](std::ostream& out) { write_show(show, path, rendering, out); });
}
