// Edits light shows: reads one, applies the edits in the order given, writes or plays it.

#include "CommandLine.h"
#include "Description.h"
#include "Dmx.h"
#include "Files.h"
#include "Fit.h"
#include "Labels.h"
#include "Picture.h"
#include "Recording.h"
#include "Show.h"
#include "ShowLimits.h"
#include "Terminal.h"
#include "Text.h"
#include "Timeline.h"
#include "olad.h"
#include "parse.h"

#include <animationmodel/Rotation.h>
#include <animationmodel/retime.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <utility>

using namespace Kiv;

namespace {

using File = std::string;

template <unsigned int least, unsigned int greatest>
struct Number {
    explicit Number(const std::string& word) {
        const auto number = parse<unsigned int>(word);
        if (!number || *number < least || *number > greatest)
            throw std::runtime_error("needs a number from " + std::to_string(least) + " to " +
                                     std::to_string(greatest) + ", not " + in_quotes(word));
        value = *number;
    }
    operator unsigned int() const { return value; }
    unsigned int value = 0;
};

/// Milliseconds, which are frames, seconds, or a label: "1500", "1.5s", "verse", "verse:end".
template <unsigned int least>
struct Milliseconds {
    Milliseconds(const std::string& word, const Labels& labels) {
        const bool seconds = word.ends_with('s');
        const auto number = parse<double>({word.data(), word.size() - (seconds ? 1 : 0)});
        double time = std::round(number.value_or(NAN) * (seconds ? 1000 : 1));
        const auto valid = [&time] { return time >= least && time <= mostFrames; };
        if (!valid())
            if (const auto labelled = labels.find(word))
                time = *labelled;
        if (!valid())
            throw std::runtime_error(std::string("a time ") + (least > 0 ? "above 0 " : "") +
                                     "such as 1500 or 1.5s cannot be " + in_quotes(word));
        frames = static_cast<unsigned int>(time);
    }
    operator unsigned int() const { return frames; }
    unsigned int frames = 0;
};
using Time = Milliseconds<0>;
using Duration = Milliseconds<1>;

/// The milliseconds from one time up to another.
struct Range {
    Range(Time from, Time to) : begin(from), end(to) {
        if (begin >= end)
            throw std::runtime_error("TO has to come after FROM");
    }
    unsigned int begin, end;
};

/// Milliseconds as seconds: "0.15 s".
std::string seconds(std::uint64_t milliseconds) {
    std::string text = std::to_string(milliseconds / 1000);
    std::string rest = std::to_string(1000 + milliseconds % 1000);
    rest[0] = '.';
    rest.erase(rest.find_last_not_of("0.") + 1);
    return text.append(rest).append(" s");
}

/// Throws std::invalid_argument if a show cannot last so many frames.
void check_length(std::uint64_t frames) {
    if (frames > mostFrames)
        throw std::invalid_argument("the show would last " + seconds(frames) + ", and " +
                                    seconds(mostFrames) + " is the most");
}

/// Throws std::invalid_argument if intro and outro do not fit into a show.
void check_parts(const Animation& show) {
    const std::uint64_t frames = full_duration(show.layers);
    if (std::uint64_t{show.introSize} + show.outroSize <= frames)
        return;
    const bool both = show.introSize > 0 && show.outroSize > 0;
    throw std::invalid_argument(
        "the show lasts " + seconds(frames) +
        (both ? ", its intro " + seconds(show.introSize) + ", its outro " + seconds(show.outroSize)
              : ""));
}

void rotation(Animation& show, Number<0, 255> pulse, Number<0, 255> rest, Duration rise,
              Duration fall, Duration step) {
    show = Rotation(static_cast<float>(pulse), static_cast<float>(rest), rise, fall, step);
    show.fps = 1000;
    unsigned int channel = 0;
    for (const auto& [name, layer] : std::exchange(show.layers, {}))
        show.layers[channel_name(1, ++channel)] = layer;
}

/// Where the show laid over it sends nothing, or waits, the show goes on: keys end there.
void override_with(Animation& show, Animation&& other, Time at) {
    check_length(std::uint64_t{at} + other.durationInFrames());
    for (const auto& [name, layer] : other.layers)
        show.layers[name]; // so that it sends nothing where the other show does not
    settle(show.layers);
    for (auto& [name, layer] : other.layers) {
        unsigned int end = at;
        for (AnimationKey& key : layer) {
            if (key.command.args.empty()) {
                key.command.effect = Wait;
                show.removeInLayer(name, end, 0);
            }
            end += key.duration;
        }
        show.removeInLayer(name, end, 0);
    }
    show.overrideLayersWith(other, at);
}

/// The first key of a layer that begins at `frame` or later.
KeyVector::const_iterator key_from(const KeyVector& keys, std::uint64_t frame) {
    std::uint64_t at = 0;
    return std::find_if(keys.begin(), keys.end(), [&](const AnimationKey& key) {
        return std::exchange(at, at + key.duration) >= frame;
    });
}

/// Plays `count` times what lies between intro and outro. To play it twice cuts all that there is
/// to cut; what is left is to copy, and to tell how far that is.
void loop(Animation& show, unsigned int count) {
    const std::uint64_t parts = std::uint64_t{show.introSize} + show.outroSize;
    const std::uint64_t body = show.durationInFrames() - parts;
    check_length(parts + body * count);
    settle(show.layers);
    show = show.loop(std::min(count, 2U), false, false);
    if (count <= 2 || body == 0)
        return;
    Progress progress("looping");
    double done = 0;
    const double all = static_cast<double>(show.layers.size()) * (count - 2);
    for (auto& [name, keys] : show.layers) {
        const auto begin = key_from(keys, show.introSize);
        const auto end = key_from(keys, show.introSize + body);
        KeyVector looped;
        looped.reserve(keys.size() + static_cast<std::size_t>(end - begin) * (count - 2));
        looped.assign(keys.cbegin(), end);
        for (unsigned int i = 2; i < count; ++i) {
            looped.insert(looped.end(), begin, end);
            progress(++done, all);
        }
        looped.insert(looped.end(), end, keys.cend());
        keys = std::move(looped);
    }
}

/// Writes pieces whose names are numbered, before ".fseq" or ".json" if that is how they end.
void split(const Animation& show, Duration step, const File& file, const Rendering& rendering) {
    const std::uint64_t count = (full_duration(show.layers) + step - 1) / step;
    if (count > limits.files)
        throw std::invalid_argument(std::to_string(count) + " files are more than " +
                                    std::to_string(limits.files) +
                                    "; --no-limit writes them all the same");
    Animation whole = show;
    settle(whole.layers);
    std::vector<Animation> pieces = whole.splitEach(step, true, true);
    std::erase_if(pieces, [](const Animation& piece) { return piece.empty(); });
    const std::size_t width = std::to_string(pieces.size()).size();
    const std::size_t kind = file.ends_with(".fseq") || file.ends_with(".json") ? 5 : 0;
    std::vector<File> paths;
    for (std::size_t i = 1; i <= pieces.size(); ++i) {
        std::string number = std::to_string(i);
        number.insert(0, width - number.size(), '0');
        paths.push_back(File(file).insert(file.size() - kind, number));
    }
    Progress progress("splitting");
    write_files(paths, [&](std::size_t index, std::ostream& out) {
        progress(static_cast<double>(index), static_cast<double>(paths.size()));
        write_show(pieces[index], paths[index], rendering, out);
    });
}

void draw(const Animation& show, const File& file) {
    Animation played = show;
    settle(played.layers);
    Progress progress("drawing");
    write_file(file, [&](std::ostream& out) {
        write_svg(out, "A light show", played, std::ref(progress));
    });
}

struct Action {
    std::string said; ///< The option and its words.
    std::function<void(Animation&)> act;
};
using Actions = std::vector<Action>;

std::function<void(Animation&)> action(const std::function<void(Animation&, Range)>& act,
                                       const Words& words, const Labels& labels) {
    const Range range{Time(words[0], labels), Time(words[1], labels)};
    return [=](Animation& show) { act(show, range); };
}

template <class Argument>
Argument argument(const std::string& word, const Labels& labels) {
    if constexpr (std::is_constructible_v<Argument, const std::string&, const Labels&>)
        return Argument(word, labels);
    else
        return Argument(word);
}

/// `act` with the words after an option for arguments.
template <class Show, class... Arguments>
std::function<void(Animation&)> action(const std::function<void(Show, Arguments...)>& act,
                                       const Words& words, const Labels& labels) {
    [[maybe_unused]] auto word = words.begin();
    const std::tuple<std::decay_t<Arguments>...> arguments{
        argument<std::decay_t<Arguments>>(*word++, labels)...};
    return [=](Animation& show) { std::apply(act, std::tuple_cat(std::tie(show), arguments)); };
}

/// Runs an action. What is wrong with its numbers is said after its name, what is wrong with a file
/// after that of the file.
void run(const Action& action, Animation& show) {
    try {
        action.act(show);
        check_length(full_duration(show.layers));
        check_parts(show);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(action.said + ": " + error.what());
    }
}

void run(Actions inputs, const Actions& edits, const Actions& outputs) {
    if (inputs.size() != 1)
        throw std::runtime_error("needs a FILE or --rotation, and not both");
    Animation show(1000);
    inputs.insert(inputs.end(), edits.begin(), edits.end());
    for (const Action& change : inputs)
        run(change, show);
    for (const Action& output : outputs)
        run(output, show);
    if (outputs.empty())
        print_timeline(std::cout, show, terminal_width(), coloured());
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only memory can run out before the program runs
int main(int argc, char** argv) {
    Actions inputs;
    Actions edits;
    Actions outputs;
    unsigned int rate = 40;
    bool json = false;
    Rendering rendering;
    std::vector<Option> options;
    Labels labels;
    std::vector<std::function<void()>> actions; // to take once all labels are known
    const auto add = [&](Actions& taken, const char* name, const char* words, const char* help,
                         auto act) {
        const auto take = [&, name, act](const Words& given) {
            actions.emplace_back([&, name, act, given] {
                std::string said(name[0] == '-' ? name : "");
                for (const std::string& word : given)
                    said.append(said.empty() ? "" : " ").append(printable(word));
                try {
                    taken.push_back({said, action(std::function(act), given, labels)});
                } catch (const std::runtime_error& error) {
                    throw std::runtime_error(std::string(name) + ": " + error.what());
                }
            });
        };
        options.push_back({name, words, help, take});
    };
    add(inputs, "FILE", "", "an .fseq file, a recording of ola_recorder, or an animation as JSON",
        [&](Animation& show, const File& file) { show = read_show(file, rendering); });
    add(inputs, "--rotation", "PULSE REST RISE FALL STEP",
        "instead: the preset on channels 1 to 8 of universe 1",
        [&](Animation& show, Number<0, 255> pulse, Number<0, 255> rest, Duration rise,
            Duration fall, Duration step) {
            rendering.format = "rotation";
            rotation(show, pulse, rest, rise, fall, step);
        });
    add(edits, "--keep", "FROM TO", "keeps what lies between", [](Animation& show, Range range) {
        settle(show.layers);
        show.remove(range.end, mostFrames);
        show.remove(0, range.begin);
    });
    add(edits, "--remove", "FROM TO", "removes what lies between",
        [](Animation& show, Range range) {
            settle(show.layers);
            show.remove(range.begin, range.end - range.begin);
        });
    add(edits, "--insert", "FILE AT", "inserts a show",
        [&](Animation& show, const File& file, Time at) {
            const Animation other = read_show(file, rendering);
            check_length(std::max<std::uint64_t>(show.durationInFrames(), at) +
                         other.durationInFrames());
            settle(show.layers);
            show.insert(other, at);
        });
    add(edits, "--append", "FILE", "appends a show", [&](Animation& show, const File& file) {
        const Animation other = read_show(file, rendering);
        check_length(std::uint64_t{show.durationInFrames()} + other.durationInFrames());
        show.pushBack(other, true, true);
    });
    add(edits, "--override", "FILE AT", "lays a show over",
        [&](Animation& show, const File& file, Time at) {
            override_with(show, read_show(file, rendering), at);
        });
    add(edits, "--intro", "T", "the first T do not loop",
        [](Animation& show, Time size) { show.introSize = size; });
    add(edits, "--outro", "T", "the last T do not loop",
        [](Animation& show, Time size) { show.outroSize = size; });
    add(edits, "--loop", "N", "plays N times what lies between intro and outro",
        [](Animation& show, Number<0, mostFrames> n) { loop(show, n); });
    add(edits, "--last", "T", "plays faster or slower, to last T",
        [](Animation& show, Time frames) { stretch_to(show, frames.frames); });
    add(edits, "--fit", "", "joins keys: the values at the start of each step stay",
        [&](Animation& show) { fit(show, rendering.step()); });
    add(outputs, "--write", "FILE", "writes .fseq or .json if FILE ends so, else a recording",
        [&](const Animation& show, const File& file) { write_show(show, file, rendering); });
    add(outputs, "--split", "T FILE", "writes FILE1, FILE2 ... of T each; part.fseq as part1.fseq",
        [&](const Animation& show, Duration step, const File& file) {
            split(show, step, file, rendering);
        });
    add(outputs, "--svg", "FILE", "draws a picture that plays", draw);
    add(outputs, "--describe", "", "prints what the show holds", [&](const Animation& show) {
        (json ? describe_as_json : describe)(std::cout, show, rendering.format);
    });
    options.push_back({"--json", "", "has --describe print JSON, for programs",
                       [&](const Words&) { json = true; }});
    add(outputs, "--play", "", "plays by the olad of this machine",
        [&](const Animation& show) { play_by_olad(show, rate); });
    options.push_back({"--rate", "N", "frames a second to play, 1 to 1000 (40)",
                       [&](const Words& words) { rate = Number<1, 1000>(words[0]); }});
    options.push_back({"--step", "MS",
                       "milliseconds a step of .fseq files, 1 to 255 (as read, or 25)",
                       [&](const Words& words) { rendering.told = Number<1, 255>(words[0]); }});
    options.push_back({"--labels", "FILE",
                       "names times by the labels of Audacity: verse, verse:end",
                       [&](const Words& words) { labels.read(words[0]); }});
    options.push_back({"--no-limit", "",
                       "reads and writes more than 1 GB, splits in more than 1000",
                       [](const Words&) { limits = unlimited; }});
    const CommandLine line{
        "lightshow", "Edits light shows. A time is milliseconds, seconds with an s, or a label.",
        options, [&] {
            for (const auto& take : actions)
                take();
            run(inputs, edits, outputs);
        }};
    return line.run(argc, argv);
}
