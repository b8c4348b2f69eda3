#include "Picture.h"

#include "Colour.h"
#include "Measures.h"
#include "Text.h"
#include <animationmodel/play.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <sstream>
#include <string_view>

using namespace Kiv;

namespace {

constexpr int pageWidth = 800;
constexpr int margin = 16;
constexpr int laneHeight = 24;
constexpr int leastSeen = 4; ///< Narrower keys are too small to tell or show more than a colour.
constexpr int signWidth = 7; ///< Of a small letter or digit.

// A page of its own colour: a picture does not know what it stands on.
constexpr const char* style = R"(<style>
text { font: 12px "DejaVu Sans", sans-serif; fill: #e6edf3; }
.title { font-weight: bold; font-size: 16px; }
.note, .name, .tick, .none { fill: #aab4c0; }
.lamp, .tick, .part, .none, .hold { text-anchor: middle; }
.to { text-anchor: end; }
text.lamp, .tick, .part, .none, .hold, .from, .to { font-size: 11px; }
.page { fill: #12161f; }
rect.part { fill: #58a6ff; fill-opacity: .2; }
text.part { fill: #79b8ff; }
path.tick { stroke: #aab4c0; }
.key, circle { stroke: #6b7ba8; stroke-opacity: .7; }
rect.none { fill: none; stroke: #8c959f; stroke-dasharray: 3 3; }
.bright { fill: #1b1b1b; }
.dim { fill: #ffffff; }
.now { fill: #ff7b72; }
</style>
)";

/// As XML has it: what it may not hold becomes the replacement character.
std::string escaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t size = character(text);
        switch (text[0]) {
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '&': result += "&amp;"; break;
        default: result += size > 0 ? text.substr(0, size) : "\xef\xbf\xbd";
        }
        text.remove_prefix(std::max<std::size_t>(1, size));
    }
    return result;
}

int width_of(const std::string& text) {
    return signWidth * static_cast<int>(text.size());
}

/// Draws an animation; all coordinates are whole numbers, so that every machine draws the same.
class Drawing {
public:
    Drawing(std::ostream& out, const Animation& animation, const PictureProgress& progress)
        : out(out), animation(animation), progress(progress), range(animation),
          keys(count_keys(animation.layers)),
          duration(std::max<std::uint64_t>(1, full_duration(animation.layers))) {
        for (const auto& [name, layer] : animation.layers)
            longest = std::max(longest, width_of(name));
        left = margin + std::min(longest, pageWidth / 4) + 12;
        perRow = longest > 40 ? 8 : 16;
        if (small())
            perRow = 32;
        lanes = 60 + (count() + perRow - 1) / perRow * lampHeight() + 24;
        height = lanes + laneHeight * count() + 58;
    }

    void draw(const std::string& title) {
        out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << pageWidth << ' '
            << height << "\" width=\"" << pageWidth << "\" height=\"" << height << "\">\n"
            << style << "<rect class=\"page\" width=\"" << pageWidth << "\" height=\"" << height
            << "\" rx=\"8\"/>\n";
        text(margin, 28, "title", title);
        text(margin, 48, "note", measures(animation));
        part(0, std::min<std::uint64_t>(animation.introSize, duration), "intro");
        if (!animation.empty())
            part(duration - std::min<std::uint64_t>(animation.outroSize, duration), duration,
                 "outro");
        int index = 0;
        for (const auto& [name, layer] : animation.layers) {
            lamp(index, name, layer);
            const int y = lanes + laneHeight * index++;
            text(margin, y + 15, "name", name);
            for_each_key(layer, [this, y](const AnimationKey& key, std::uint64_t begin) {
                block(key, begin, y);
                advance();
            });
        }
        ruler(lanes + laneHeight * count());
        text(margin, height - 12, "note",
             "Values: two for a Transition, one for a Hold; coloured from lowest to highest. "
             "Dashed: Wait or NoValue.");
        out << "</svg>\n";
    }

private:
    int count() const { return static_cast<int>(animation.layers.size()); }
    bool small() const { return count() > 32; } ///< Whether lamps are small and have no names.
    int lampHeight() const { return small() ? 24 : 60; }

    /// Tells that a key is in a lamp, or in its lane.
    void advance() {
        if (progress)
            progress(static_cast<double>(++done), static_cast<double>(2 * keys));
    }

    int at(std::uint64_t frame) const {
        return left + static_cast<int>(
                          frame * static_cast<unsigned int>(pageWidth - margin - left) / duration);
    }

    void text(int x, int y, const std::string& kind, const std::string& words) {
        out << "<text class=\"" << kind << "\" x=\"" << x << "\" y=\"" << y << "\">"
            << escaped(words) << "</text>\n";
    }

    void part(std::uint64_t begin, std::uint64_t end, const char* name) {
        if (begin >= end)
            return;
        out << "<rect class=\"part\" x=\"" << at(begin) << "\" y=\"" << lanes - 15 << "\" width=\""
            << at(end) - at(begin) << "\" height=\"" << laneHeight * count() + 15 << "\"/>\n";
        text((at(begin) + at(end)) / 2, lanes - 5, "part", name);
    }

    std::string colour(std::optional<float> value) const {
        const Colour shown = value ? colour_of(range.level(*value)) : Colour{43, 47, 58};
        std::string text = "rgb(";
        for (const int part : {shown.red, shown.green, shown.blue})
            text.append(std::to_string(part)).push_back(',');
        text.back() = ')';
        return text;
    }

    /// Changes an attribute while the animation plays, if it does.
    void animate(const char* attribute, const std::string& values, const std::string& times) {
        const float seconds = animation.durationInSeconds();
        if (seconds > 0 && std::isfinite(seconds))
            out << "<animate attributeName=\"" << attribute << "\" dur=\"" << number(seconds, 6)
                << "s\" repeatCount=\"indefinite\" values=\"" << values << "\" keyTimes=\"" << times
                << "\"/>";
    }

    /// The part of the duration that is over at `frame`: 0 to 1.
    std::string time_of(std::uint64_t frame) const {
        if (frame == duration)
            return "1";
        const std::uint64_t millionths = frame * 1000000 / duration;
        const std::string digits = std::to_string(1000000 + millionths);
        return digits.substr(1).insert(0, 1, '.');
    }

    void lamp(int index, const std::string& name, const KeyVector& layer) {
        const int inRow = std::min(perRow, count() - index / perRow * perRow);
        const int pitch = (pageWidth - 2 * margin) / perRow;
        const int x = pageWidth / 2 + (2 * (index % perRow) + 1 - inRow) * pitch / 2;
        const int y = (small() ? 72 : 80) + index / perRow * lampHeight();
        std::string values;
        std::string times;
        const auto add = [&](std::optional<float> value, std::uint64_t frame) {
            values.append(values.empty() ? "" : ";").append(colour(value));
            times.append(times.empty() ? "" : ";").append(time_of(frame));
        };
        std::uint64_t end = 0;
        for_each_key(layer, [&](const AnimationKey& key, std::uint64_t begin) {
            const auto& args = key.command.args;
            end = begin + key.duration;
            add(args.empty() ? std::nullopt : std::optional(args[0]), begin);
            add(args.empty() ? std::nullopt : std::optional(args[args.size() - 1]), end);
            advance();
        });
        if (end < duration) {
            add(std::nullopt, end);
            add(std::nullopt, duration);
        }
        out << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << (small() ? 8 : 16)
            << "\" fill=\"" << colour(Track(name, layer).value()) << "\">";
        animate("fill", values, times);
        out << "</circle>\n";
        if (!small())
            text(x, y + 32, "lamp", name);
    }

    void block(const AnimationKey& key, std::uint64_t begin, int y) {
        const int x = at(begin);
        const int width = at(begin + key.duration) - x - 1;
        const auto& args = key.command.args;
        const bool moves = args.size() > 1 && args[0] != args[1];
        if (width < 0) // another key begins there
            return;
        std::string fill = args.empty() ? "" : colour(args[0]);
        if (moves && width >= leastSeen)
            fill = gradient(args[0], args[1]);
        out << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << std::max(1, width)
            << "\" height=\"" << laneHeight - 4 << "\" rx=\"2\" class=\""
            << (fill.empty() ? "none\"" : "key\" fill=\"" + fill + "\"");
        if (width >= leastSeen)
            out << "><title>" << key.duration << " frames from " << begin << "</title></rect>\n";
        else
            out << "/>\n";
        const std::string none = key.command.effect == Wait ? "Wait" : "NoValue";
        const std::string first = args.empty() ? none : label(args[0]);
        const std::string second = moves ? label(args[1]) : "";
        if (width_of(first + second) + (moves ? 8 : 2) > width)
            return;
        if (args.empty())
            text(x + width / 2, y + 14, "none", first);
        else if (!moves)
            text(x + width / 2, y + 14, "hold " + on(args[0]), first);
        else {
            text(x + 3, y + 14, "from " + on(args[0]), first);
            text(x + width - 3, y + 14, "to " + on(args[1]), second);
        }
    }

    /// What to fill a key with that moves between two values. It is drawn before the first one.
    std::string gradient(float from, float to) {
        const std::string id = std::string("g") + std::to_string(range.level(from)) + "-" +
                               std::to_string(range.level(to));
        if (gradients.insert(id).second)
            out << "<linearGradient id=\"" << id << "\"><stop stop-color=\"" << colour(from)
                << "\"/><stop offset=\"1\" stop-color=\"" << colour(to)
                << "\"/></linearGradient>\n";
        return "url(#" + id + ")";
    }

    /// How to write over the colour of a value.
    std::string on(float value) const { return range.level(value) > 110 ? "bright" : "dim"; }

    void ruler(int y) {
        const std::uint64_t step = ruler_step((duration + 11) / 12);
        for (std::uint64_t frame = 0; frame <= duration; frame += step) {
            out << "<path class=\"tick\" d=\"M" << at(frame) << ' ' << y << "v4\"/>\n";
            text(at(frame), y + 15, "tick", std::to_string(frame));
        }
        out << "<rect class=\"now\" x=\"" << left << "\" y=\"" << lanes - 4
            << "\" width=\"1\" height=\"" << laneHeight * count() + 8 << "\">";
        animate("x", std::to_string(left) + ";" + std::to_string(at(duration)), "0;1");
        out << "</rect>\n";
    }

    std::ostream& out;
    const Animation& animation;
    const PictureProgress& progress;
    std::size_t done = 0; ///< Keys in a lamp, and keys in a lane.
    ValueRange range;
    std::size_t keys;
    std::uint64_t duration;
    int longest = 0; ///< The longest name.
    int left = 0;    ///< Where frame 0 is.
    int lanes = 0;   ///< Where the first lane is.
    int height = 0;
    int perRow = 0; ///< Lamps.
    std::set<std::string> gradients;
};

} // namespace

void write_svg(std::ostream& out, const std::string& title, const Animation& animation,
               const PictureProgress& progress) {
    Drawing(out, animation, progress).draw(title);
}

std::string svg_of(const std::string& title, const Animation& animation) {
    std::ostringstream text;
    write_svg(text, title, animation);
    return text.str();
}
