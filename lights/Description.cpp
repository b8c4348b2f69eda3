#include "Description.h"

#include "Dmx.h"
#include "Measures.h"

#include <animationmodel/json.h>

#include <cstdint>
#include <map>
#include <numeric>
#include <vector>

using namespace Kiv;

namespace {

using Channels = std::map<unsigned int, std::vector<unsigned int>>; ///< By universe, in order.

struct Description {
    explicit Description(const Animation& show) : milliseconds(full_duration(show.layers)) {
        LayerMap played = show.layers;
        settle(played);
        for (const auto& [name, keys] : show.layers) {
            const auto [universe, channel] = channel_of(name);
            channels[universe].push_back(channel);
            if (!is_lit(played.at(name)))
                dark[universe].push_back(channel);
            for_each_key(keys, [&](const AnimationKey& key, std::uint64_t begin) {
                ++this->keys[key.command.effect];
                step = std::gcd(step, begin + key.duration);
            });
        }
    }

    std::uint64_t milliseconds;
    std::uint64_t step = 0; ///< All keys begin and end on a multiple of it.
    Channels channels;
    Channels dark; ///< Those that are never lit.
    std::map<AnimationKeyCommandEffect, std::size_t> keys;
};

/// "universe 1: 1 to 8, 10".
void print(std::ostream& out, const Channels& all) {
    for (const auto& [universe, channels] : all) {
        out << "  universe " << universe << ':';
        for (std::size_t first = 0; first < channels.size();) {
            std::size_t last = first;
            while (last + 1 < channels.size() && channels[last + 1] == channels[last] + 1)
                ++last;
            out << (first > 0 ? ", " : " ") << channels[first];
            if (last > first)
                out << " to " << channels[last];
            first = last + 1;
        }
        out << '\n';
    }
}

} // namespace

void describe(std::ostream& out, const Animation& show, const std::string& format) {
    const Description it(show);
    out << "format: " << format << "\nlength: " << it.milliseconds << " ms, intro "
        << show.introSize << ", outro " << show.outroSize << "\nstep: " << it.step << " ms\nkeys:";
    const char* before = " ";
    for (const auto& [effect, count] : it.keys)
        out << std::exchange(before, ", ") << count << ' ' << json_file::shown(effect);
    out << (it.keys.empty() ? " none" : "") << "\nchannels:\n";
    print(out, it.channels);
    out << "never lit:" << (it.dark.empty() ? " none" : "") << '\n';
    print(out, it.dark);
}

void describe_as_json(std::ostream& out, const Animation& show, const std::string& format) {
    const Description it(show);
    using Json = nlohmann::ordered_json;
    const auto listed = [](const Channels& all) {
        Json object = Json::object();
        for (const auto& [universe, channels] : all)
            object[std::to_string(universe)] = channels;
        return object;
    };
    Json keys = Json::object();
    for (const auto& [effect, count] : it.keys)
        keys[json_file::shown(effect)] = count;
    out << Json{{"format", format},
                {"milliseconds", it.milliseconds},
                {"intro", show.introSize},
                {"outro", show.outroSize},
                {"step", it.step},
                {"keys", keys},
                {"channels", listed(it.channels)},
                {"neverLit", listed(it.dark)}}
               .dump(2)
        << '\n';
}
