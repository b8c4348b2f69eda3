#include "Picture.h"

#include "Timeline.h"

#include <algorithm>
#include <string>

using namespace Kiv;

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
                                  : args.size() > 1 ? label(args[0]) + ">" + label(args[1])
                                                    : label(args[0]);
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
