#include "Timeline.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

using namespace Kiv;

namespace {

/// Calls `visit` with each key of a layer and the frame at which it begins.
template <class Visit>
void for_each_key(const KeyVector& layer, const Visit& visit) {
    unsigned int begin = 0;
    for (const AnimationKey& key : layer) {
        visit(key, begin);
        begin += key.duration;
    }
}

/// What to write on a block: "0>1" for a Transition, "1" for a Hold.
std::string label(const AnimationKey& key) {
    switch (key.command.effect) {
    case Transition:
        return number(key.command.args[0]) + ">" + number(key.command.args[1]);
    case Hold:
        return number(key.command.args[0]);
    case Wait:
        return "~";
    default:
        return "-";
    }
}

/// So many frames between two marks of the ruler that they stand `least` or more apart.
unsigned int ruler_step(unsigned int least) {
    unsigned int step = 1;
    for (unsigned int factor = 0; step < least && step < 1000000000; ++factor)
        step = factor % 3 == 1 ? step / 2 * 5 : step * 2;
    return step;
}

} // namespace

std::optional<float> value_at(const KeyVector& layer, unsigned int frame) {
    std::optional<float> value;
    for_each_key(layer, [&](const AnimationKey& key, unsigned int begin) {
        if (frame < begin || frame - begin >= key.duration)
            return;
        const auto& args = key.command.args;
        if (key.command.effect == Hold)
            value = args[0];
        if (key.command.effect == Transition)
            value = args[0] + (args[1] - args[0]) * static_cast<float>(frame - begin) /
                                  static_cast<float>(key.duration);
    });
    return value;
}

ValueRange::ValueRange(const Animation& animation) {
    bool first = true;
    for (const auto& [name, layer] : animation.layers)
        for (const AnimationKey& key : layer)
            for (const float value : key.command.args) {
                least = first ? value : std::min(least, value);
                greatest = first ? value : std::max(greatest, value);
                first = false;
            }
}

int ValueRange::level(float value) const {
    if (!(least < greatest))
        return 255;
    return static_cast<int>(std::lround((value - least) / (greatest - least) * 255));
}

Colour colour_of(int level) {
    const auto between = [level](int from, int to) { return from + (to - from) * level / 255; };
    return {between(32, 255), between(48, 209), between(96, 102)};
}

std::string number(float value) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 4);
    return {text.data(), end.ptr};
}

std::string measures(const Animation& animation) {
    return std::to_string(animation.durationInFrames()) + " frames, " +
           number(animation.durationInSeconds()) + " s at " + number(animation.fps) +
           " fps, intro " + std::to_string(animation.introSize) + ", outro " +
           std::to_string(animation.outroSize);
}

void print_timeline(std::ostream& out, const Animation& animation, unsigned int width,
                    bool coloured) {
    std::size_t margin = 6;
    for (const auto& [name, layer] : animation.layers)
        margin = std::max(margin, name.size() + 1);
    const unsigned int duration = animation.durationInFrames();
    const auto names = static_cast<unsigned int>(std::min<std::size_t>(margin, width));
    const unsigned int room = std::max(width - names, 20U);
    const unsigned int scale = std::max(1U, (duration + room - 1) / room); // frames per column
    const std::size_t columns = (duration + scale - 1) / scale;
    const auto head = [&](std::string name) {
        name.resize(margin, ' ');
        out << name;
    };

    out << measures(animation) << '\n';
    std::string ruler;
    for (std::uint64_t frame = 0; frame <= duration; frame += ruler_step(10 * scale)) {
        ruler.resize(frame / scale, ' ');
        ruler += std::to_string(frame);
    }
    head("frame");
    out << ruler << (scale > 1 ? "  (" + std::to_string(scale) + " frames a column)" : "") << '\n';
    std::string parts(columns, ' ');
    const auto mark = [&](unsigned int begin, unsigned int end, const std::string& name) {
        std::fill(parts.begin() + begin / scale, parts.begin() + (end + scale - 1) / scale, '=');
        if ((end - begin) / scale >= name.size())
            parts.replace(begin / scale, name.size(), name);
    };
    mark(0, std::min(animation.introSize, duration), "intro");
    mark(animation.outroStartFrame(), duration, "outro");
    head("");
    out << parts << '\n';

    const ValueRange range(animation);
    for (const auto& [name, layer] : animation.layers) {
        std::string row(columns, ' ');
        for_each_key(layer, [&](const AnimationKey& key, unsigned int begin) {
            const std::size_t from = begin / scale;
            const std::size_t to = (begin + key.duration - 1) / scale + 1;
            std::string block = label(key).insert(0, 1, '|');
            if (block.size() > to - from)
                block = "|";
            const bool filler = key.command.effect == Wait && block.size() > 1;
            block.resize(to - from, filler ? '~' : ' ');
            row.replace(from, block.size(), block);
        });
        head(name);
        if (!coloured) {
            out << row << "|\n";
            continue;
        }
        for (std::size_t column = 0; column < columns; ++column) {
            const auto value = value_at(layer, static_cast<unsigned int>(column) * scale);
            const int level = value ? range.level(*value) : 0;
            const Colour colour = colour_of(level);
            if (value)
                out << "\x1b[48;2;" << colour.red << ';' << colour.green << ';' << colour.blue
                    << (level > 127 ? "m\x1b[30m" : "m\x1b[97m");
            out << row[column] << "\x1b[0m";
        }
        out << '\n';
    }
}

namespace {

constexpr int leftEdge = 84;    ///< Pixels left of frame 0, for the names.
constexpr int trackWidth = 900; ///< Pixels for the whole duration.
constexpr int laneHeight = 22;
constexpr int titleHeight = 58;

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    return result;
}

/// Draws an animation; all coordinates are whole numbers, so that every machine draws the same.
class Drawing {
public:
    Drawing(std::ostream& out, const Animation& animation)
        : out(out), animation(animation), range(animation),
          duration(std::max(1U, animation.durationInFrames())) {}

    int height() const { return lanes() + titleHeight + 26; }

    void draw(const std::string& title) {
        text(0, 16, "title", title);
        text(0, 36, "note", measures(animation));
        part(0, std::min(animation.introSize, duration), "intro");
        part(animation.outroStartFrame(), animation.durationInFrames(), "outro");
        int y = titleHeight + 2;
        for (const auto& [name, layer] : animation.layers) {
            text(0, y + 13, "name", name);
            for_each_key(
                layer, [&](const AnimationKey& key, unsigned int begin) { block(key, begin, y); });
            y += laneHeight;
        }
        const unsigned int step = ruler_step((duration + 14) / 15);
        for (std::uint64_t frame = 0; frame <= duration; frame += step) {
            out << "<path class=\"tick\" d=\"M" << at(frame) << ' ' << y << "v4\"/>\n";
            text(at(frame), y + 15, "tick", std::to_string(frame));
        }
    }

private:
    int lanes() const { return laneHeight * static_cast<int>(animation.layers.size()); }

    int at(std::uint64_t frame) const {
        return leftEdge + static_cast<int>(frame * trackWidth / duration);
    }

    void text(int x, int y, const char* kind, const std::string& words) {
        out << "<text class=\"" << kind << "\" x=\"" << x << "\" y=\"" << y << "\">"
            << escaped(words) << "</text>\n";
    }

    void part(unsigned int begin, unsigned int end, const char* name) {
        if (begin >= end)
            return;
        out << "<rect class=\"part\" x=\"" << at(begin) << "\" y=\"" << titleHeight - 12
            << "\" width=\"" << at(end) - at(begin) << "\" height=\"" << lanes() + 14 << "\"/>\n";
        text((at(begin) + at(end)) / 2, titleHeight - 3, "part", name);
    }

    void block(const AnimationKey& key, unsigned int begin, int y) {
        const int x = at(begin);
        const int width = std::max(1, at(std::uint64_t{begin} + key.duration) - x - 1);
        const auto& args = key.command.args;
        int level = 0;
        std::string fill;
        if (!args.empty()) {
            level = (range.level(args[0]) + range.level(args[args.size() - 1])) / 2;
            fill = rgb(range.level(args[0]));
        }
        if (args.size() > 1 && args[0] != args[1]) {
            const std::string id =
                std::string("g").append(std::to_string(y)) + "-" + std::to_string(begin);
            out << "<linearGradient id=\"" << id << "\"><stop stop-color=\"" << fill
                << "\"/><stop offset=\"1\" stop-color=\"" << rgb(range.level(args[1]))
                << "\"/></linearGradient>\n";
            fill = "url(#" + id + ")";
        }
        out << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\""
            << laneHeight - 4 << "\" rx=\"2\" " << (fill.empty() ? "class=\"none" : "fill=\"")
            << fill << "\"><title>" << key.duration << " frames from " << begin
            << "</title></rect>\n";
        const std::string words = key.command.effect == Wait      ? "Wait"
                                  : key.command.effect == NoValue ? "NoValue"
                                                                  : label(key);
        if (static_cast<int>(words.size()) * 7 + 2 <= width)
            text(x + width / 2, y + 13,
                 fill.empty()  ? "on-none"
                 : level > 110 ? "on-bright"
                               : "on-dim",
                 words);
    }

    static std::string rgb(int level) {
        const Colour colour = colour_of(level);
        return "rgb(" + std::to_string(colour.red) + "," + std::to_string(colour.green) + "," +
               std::to_string(colour.blue) + ")";
    }

    std::ostream& out;
    const Animation& animation;
    ValueRange range;
    unsigned int duration;
};

} // namespace

void write_svg(std::ostream& out, const std::string& title, const Animation& animation) {
    Drawing drawing(out, animation);
    const int height = drawing.height();
    const int width = leftEdge + trackWidth + 16;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << width << ' ' << height
        << "\" width=\"" << width << "\" height=\"" << height << R"(">
<style>
text { font: 12px "DejaVu Sans", sans-serif; fill: #24292f; }
.title { font-weight: bold; font-size: 15px; }
.note, .tick, .name { fill: #57606a; }
text.tick, text.part, .on-none, .on-bright, .on-dim { text-anchor: middle; font-size: 11px; }
.on-bright { fill: #1b1b1b; }
.on-dim { fill: #ffffff; }
rect.part { fill: #0969da; fill-opacity: .16; }
text.part { fill: #0969da; }
path.tick { stroke: #57606a; }
.none { fill: none; stroke: #8c959f; stroke-dasharray: 3 3; }
.on-none { fill: #57606a; }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3; }
.note, .tick, .name, .on-none { fill: #9da7b3; }
rect.part { fill: #58a6ff; fill-opacity: .22; }
text.part { fill: #58a6ff; }
.on-bright { fill: #1b1b1b; }
.on-dim { fill: #ffffff; }
}
</style>
)";
    drawing.draw(title);
    out << "</svg>\n";
}
