#include "Dmx.h"

#include "Text.h"
#include "parse.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string_view>

using namespace Kiv;

std::string channel_name(unsigned int universe, unsigned int channel) {
    std::string digits = std::to_string(universe);
    digits.insert(0, universe > 9999 ? 10 - digits.size() : 4 - digits.size(), '0');
    digits.insert(0, universe > 9999 ? 1 : 0, ':'); // which sorts after all digits
    return digits.append(".").append(std::to_string(1000 + channel).substr(1));
}

std::pair<unsigned int, unsigned int> channel_of(const std::string& layer) {
    const std::string_view name = std::string_view(layer).substr(layer.starts_with(':') ? 1 : 0);
    const std::size_t point = std::min(name.find('.'), name.size());
    const auto universe = parse<unsigned int>(name.substr(0, point));
    const auto channel = parse<unsigned int>(name.substr(std::min(point + 1, name.size())));
    if (!universe || !channel || *channel < 1 || *channel > 512)
        throw std::runtime_error("a layer is called UNIVERSE.CHANNEL, such as 1.5, not " +
                                 in_quotes(layer));
    return {*universe, *channel};
}

std::uint8_t dmx_value(float value) {
    return value > 0 ? static_cast<std::uint8_t>(std::lround(std::min(value, 255.F))) : 0;
}

/// What a channel shows so many frames after the begin of a key with a value.
static std::uint8_t level_of(const AnimationKey& key, unsigned int passed) {
    const AnimationKeyArgs& args = key.command.args;
    const bool moves = args.size() > 1 && passed > 0;
    return dmx_value(moves ? transition_value(args[0], args[1], passed, key.duration) : args[0]);
}

bool is_lit(const KeyVector& keys) {
    return std::any_of(keys.begin(), keys.end(), [](const AnimationKey& key) {
        return !key.command.args.empty() && key.duration > 0 &&
               (level_of(key, 0) > 0 || level_of(key, key.duration - 1) > 0);
    });
}

void settle(LayerMap& layers) {
    const std::uint64_t duration = full_duration(layers);
    for (auto& [name, keys] : layers) {
        AnimationKeyCommand kept = NoValue;
        std::uint64_t end = 0;
        for (AnimationKey& key : keys) {
            const AnimationKeyArgs& args = key.command.args;
            if (key.command.effect == Wait)
                key.command = kept;
            else
                kept = args.empty() ? AnimationKeyCommand(NoValue)
                                    : AnimationKeyCommand(Hold, {args[args.size() - 1]});
            end += key.duration;
        }
        if (end < duration)
            keys.emplace_back(kept, static_cast<unsigned int>(duration - end));
    }
}

DmxPlayer::DmxPlayer(LayerMap given) : layers(std::move(given)) {
    settle(layers);
    for (const auto& [name, keys] : layers) {
        const auto [universe, channel] = channel_of(name);
        due.emplace_back(0, channels.size());
        channels.push_back({universe, channel - 1, &keys});
        universes[universe];
    }
}

const Universes& DmxPlayer::seek(unsigned int frame) {
    changed.clear();
    while (!due.empty() && due.front().first <= frame) {
        std::pop_heap(due.begin(), due.end(), std::greater<>());
        Channel& channel = channels[due.back().second];
        show(channel, channel.seek(frame));
        due.back().first = channel.next;
        std::push_heap(due.begin(), due.end(), std::greater<>());
        changed.push_back(channel.universe);
    }
    std::sort(changed.begin(), changed.end());
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    constexpr std::uint64_t never = std::numeric_limits<unsigned int>::max();
    next = static_cast<unsigned int>(due.empty() ? never : std::min(never, due.front().first));
    return universes;
}

void DmxPlayer::show(const Channel& channel, std::optional<std::uint8_t> level) {
    std::vector<std::uint8_t>& values = universes[channel.universe];
    std::vector<bool>& has = lit[channel.universe];
    if (level && values.size() <= channel.index) {
        values.resize(channel.index + 1);
        has.resize(channel.index + 1);
    }
    if (channel.index >= values.size())
        return;
    values[channel.index] = level.value_or(0);
    has[channel.index] = level.has_value();
    while (!has.empty() && !has.back())
        has.pop_back();
    values.resize(has.size());
}

std::optional<std::uint8_t> DmxPlayer::Channel::seek(unsigned int frame) {
    for (; key < keys->size() && frame - begin >= (*keys)[key].duration; ++key)
        begin += (*keys)[key].duration;
    next = std::numeric_limits<std::uint64_t>::max();
    if (key == keys->size())
        return std::nullopt;
    next = begin + (*keys)[key].duration;
    if ((*keys)[key].command.args.empty())
        return std::nullopt;
    // The level rises or falls all the way, so that the frame on which it changes can be searched.
    const std::uint8_t level = levelAt(frame);
    std::uint64_t same = frame;
    for (std::uint64_t step = 1; same + step < next; step *= 2) {
        if (levelAt(same + step) != level)
            next = same + step;
        else
            same += step;
    }
    while (next - same > 1) {
        const std::uint64_t middle = same + (next - same) / 2;
        (levelAt(middle) == level ? same : next) = middle;
    }
    return level;
}

std::uint8_t DmxPlayer::Channel::levelAt(std::uint64_t frame) const {
    return level_of((*keys)[key], static_cast<unsigned int>(frame - begin));
}
