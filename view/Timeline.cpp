#include "Timeline.h"

#include "Colour.h"
#include "Measures.h"
#include <animationmodel/play.h>

#include <algorithm>
#include <cstdint>
#include <string>

using namespace Kiv;

namespace {

/// What to write on a key: "0>1" for a Transition, "1" for a Hold.
std::string sign_of(const AnimationKey& key) {
    const AnimationKeyArgs& args = key.command.args;
    if (args.empty())
        return key.command.effect == Wait ? "~" : "-";
    return args.size() == 1 ? label(args[0]) : label(args[0]) + ">" + label(args[1]);
}

/// Where things stand in a timeline: names in a margin, then columns of `scale` frames each.
class Layout {
public:
    Layout(const Animation& animation, unsigned int width)
        : duration(full_duration(animation.layers)) {
        std::size_t longest = std::string("frame").size();
        for (const auto& [name, layer] : animation.layers)
            longest = std::max(longest, name.size());
        margin = std::min<std::size_t>(longest + 1, width / 2);
        room = width - margin;
        scale = std::max<std::uint64_t>(1, (duration + room - 2) / (room - 1)); // a bar comes last
        columns = (duration + scale - 1) / scale;
    }

    std::string head(std::string name) const {
        name.resize(margin - 1, ' ');
        return name + ' ';
    }

    std::string ruler() const {
        std::string row;
        for (std::uint64_t frame = 0; frame <= duration; frame += ruler_step(10 * scale)) {
            const std::string mark = std::to_string(frame);
            if (frame / scale + mark.size() > room)
                break;
            row.resize(frame / scale, ' ');
            row += mark;
        }
        return row;
    }

    /// The intro and the outro, or nothing but blanks.
    std::string parts(const Animation& animation) const {
        std::string row(columns, ' ');
        const auto mark = [&](std::uint64_t begin, std::uint64_t end, const std::string& name) {
            if (begin == end)
                return;
            const std::size_t width = (end + scale - 1) / scale - begin / scale;
            row.replace(begin / scale, width, width, '=');
            if ((end - begin) / scale >= name.size())
                row.replace(begin / scale, name.size(), name);
        };
        mark(0, std::min<std::uint64_t>(animation.introSize, duration), "intro");
        mark(duration - std::min<std::uint64_t>(animation.outroSize, duration), duration, "outro");
        return row;
    }

    std::string keys(const KeyVector& layer) const {
        std::string row(columns, ' ');
        for_each_key(layer, [&](const AnimationKey& key, std::uint64_t begin) {
            if (key.duration == 0)
                return;
            const std::uint64_t end = begin + key.duration;
            const std::size_t from = begin / scale;
            const std::size_t to = (end + scale - 1) / scale;
            const std::size_t next = end < duration ? end / scale : to; // where a key may begin
            std::string block = sign_of(key).insert(0, 1, '|');
            if (block.size() > next - from)
                block = "|";
            const bool filler = key.command.effect == Wait && block.size() > 1;
            block.resize(to - from, filler ? '~' : ' ');
            row.replace(from, block.size(), block);
        });
        return row;
    }

    std::uint64_t duration;
    std::size_t margin = 0, room = 0; ///< Columns for the names, and for all else.
    std::uint64_t scale = 1;          ///< Frames a column.
    std::size_t columns = 0;
};

/// Writes each column of a row of keys in the colour that its first frame has.
void print_coloured(std::ostream& out, const std::string& row, Track track, std::uint64_t scale,
                    const ValueRange& range) {
    std::uint64_t frame = 0;
    for (const char sign : row) {
        track.seek(static_cast<unsigned int>(std::min<std::uint64_t>(frame, UINT32_MAX)));
        if (const auto value = track.value()) {
            const int level = range.level(*value);
            const Colour colour = colour_of(level);
            out << "\x1b[48;2;" << colour.red << ';' << colour.green << ';' << colour.blue
                << (level > 127 ? "m\x1b[30m" : "m\x1b[97m");
        }
        out << sign << "\x1b[0m";
        frame += scale;
    }
}

} // namespace

void print_timeline(std::ostream& out, const Animation& animation, unsigned int width,
                    bool coloured) {
    const Layout layout(animation, std::max(width, 20U));
    const ValueRange range(animation);
    out << measures(animation);
    if (layout.scale > 1)
        out << ", " << layout.scale << " frames a column";
    out << '\n' << layout.head("frame") << layout.ruler() << '\n';
    const std::string parts = layout.parts(animation);
    if (parts.find_first_not_of(' ') != std::string::npos)
        out << layout.head("") << parts << '\n';
    for (const auto& [name, layer] : animation.layers) {
        out << layout.head(name);
        const std::string row = layout.keys(layer);
        if (coloured)
            print_coloured(out, row, Track(name, layer), layout.scale, range);
        else
            out << row << '|';
        out << '\n';
    }
}
