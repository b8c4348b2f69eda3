#include "Recording.h"

#include "Dmx.h"
#include "ShowLimits.h"
#include "Terminal.h"
#include "Text.h"
#include "parse.h"

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

using namespace Kiv;

namespace {

constexpr unsigned int most = std::numeric_limits<unsigned int>::max();
constexpr std::streamsize longestLine = 65536;

/// Takes a number and the sign `after` it, or the end, off the front of `text`.
/// Throws std::runtime_error that calls it `name` if it is none, or more than `greatest`.
unsigned int take_number(std::string_view& text, char after, unsigned int greatest,
                         const char* name) {
    const std::string_view word = text.substr(0, text.find(after));
    const auto number = parse<unsigned int>(word);
    if (!number || *number > greatest)
        throw std::runtime_error(std::string(name) + " cannot be " + in_quotes(word));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    return *number;
}

std::string& append_number(std::string& text, unsigned int number) {
    std::array<char, std::numeric_limits<unsigned int>::digits10 + 1> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return text.append(digits.data(), written.ptr);
}

struct Channel {
    /// Shows `to` from frame `now` on.
    void change(unsigned int now, const AnimationKeyCommand& to) {
        if (to == shown)
            return;
        if (now > since && !keys->empty() && keys->back().command == shown)
            keys->back().duration += now - since;
        else if (now > since)
            keys->emplace_back(shown, now - since);
        shown = to;
        since = now;
    }

    KeyVector* keys;
    AnimationKeyCommand shown = NoValue;
    unsigned int since = 0;
};

/// Makes an animation of the lines of a recording.
struct Reader {
    void read(std::string_view line) {
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        if (++lines == 1 && line != "OLA Show")
            throw std::runtime_error("a recording begins with \"OLA Show\"");
        if (lines > 1 && lines % 2 == 0)
            readValues(line);
        else if (lines > 1)
            now += take_number(line, '\0', mostFrames - 1 - now, "a time in milliseconds");
    }

    Animation finish() {
        for (auto& [number, row] : channels) {
            if (row.empty()) // what never sends keeps its time all the same
                row.push_back({&show.layers[channel_name(number, 1)]});
            for (Channel& channel : row)
                channel.change(std::max(now, sent + 1), Wait);
        }
        return std::move(show);
    }

    void readValues(std::string_view line) {
        if (line.find(' ') == std::string_view::npos)
            throw std::runtime_error("a universe needs a space and values after it");
        const unsigned int universe = take_number(line, ' ', most, "a universe");
        std::vector<Channel>& row = channels[universe];
        unsigned int count = 0;
        for (; !line.empty() && count < 512; ++count) {
            const auto value = static_cast<float>(take_number(line, ',', 255, "a value"));
            if (count == row.size())
                row.push_back({&show.layers[channel_name(universe, count + 1)]});
            row[count].change(now, {Hold, {value}});
        }
        if (!line.empty())
            throw std::runtime_error("a universe has no more than 512 values");
        for (; count < row.size(); ++count)
            row[count].change(now, NoValue);
        sent = now;
    }

    Animation show = Animation(1000);
    std::map<unsigned int, std::vector<Channel>> channels;
    std::size_t lines = 0;
    unsigned int now = 0;
    unsigned int sent = 0; ///< When the last values were.
};

} // namespace

Animation read_recording(std::istream& in, const std::string& name) {
    const double size = size_of(name);
    Progress progress("reading " + name);
    Reader reader;
    std::vector<char> line(longestLine);
    std::uint64_t done = 0;
    try {
        while (in.getline(line.data(), longestLine).gcount() > 0) {
            done += static_cast<std::uint64_t>(in.gcount());
            progress(static_cast<double>(done), size);
            const bool ends = in.good(); // with a line break, which is counted, too
            const auto count = static_cast<std::size_t>(in.gcount()) - (ends ? 1 : 0);
            reader.read({line.data(), count});
            if (!ends && !in.eof())
                throw std::runtime_error("a line has fewer than 65536 bytes");
            if (done > limits.bytes)
                throw std::runtime_error("there is " + too_many_bytes("reads"));
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(name + ":" + std::to_string(reader.lines) + ": " + error.what());
    }
    if (reader.lines == 0 || in.bad())
        throw std::runtime_error(name + (in.bad() ? ": cannot be read" : ": is empty"));
    return reader.finish();
}

void write_recording(std::ostream& out, const Animation& show) {
    Progress progress("writing");
    DmxPlayer player(show.layers);
    Universes last;
    const unsigned int end = show.durationInFrames();
    unsigned int written = 0; // the frame of the last line of values
    std::string text = "OLA Show\n";
    for (unsigned int frame = 0; frame < end; frame = player.next) {
        const Universes& universes = player.seek(frame);
        for (const unsigned int number : player.changed) {
            const std::vector<std::uint8_t>& values = universes.at(number);
            if (!last.empty() && values == last[number])
                continue;
            if (!last.empty())
                append_number(text, frame - written).push_back('\n');
            append_number(text, number).append(values.empty() ? " " : "");
            for (std::size_t i = 0; i < values.size(); ++i)
                append_number(text.append(1, i == 0 ? ' ' : ','), values[i]);
            text += "\n";
            last[number] = values;
            written = frame;
        }
        out << text;
        text.clear();
        progress(frame, end);
    }
    out << text << (end > 0 ? std::to_string(end - written) + "\n" : "");
}
