#include "Dmx.h"

#include "Text.h"
#include "parse.h"

#include <cmath>
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
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.F, 255.F)));
}

DmxPlayer::DmxPlayer(const LayerMap& layers) : player(layers) {
    for (const Track& track : player) {
        const auto [universe, channel] = channel_of(track.name());
        places.emplace_back(universe, channel - 1);
    }
}

const Universes& DmxPlayer::seek(unsigned int frame) {
    player.seek(frame);
    next = std::numeric_limits<unsigned int>::max();
    for (auto& [number, values] : universes)
        values.clear();
    for (std::size_t i = 0; i < player.size(); ++i) {
        next = std::min(next, player[i].nextChange());
        std::vector<std::uint8_t>& values = universes[places[i].first];
        if (const auto value = player[i].value()) {
            values.resize(places[i].second + 1);
            values.back() = dmx_value(*value);
        }
    }
    return universes;
}
