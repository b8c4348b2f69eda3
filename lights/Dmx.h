#pragma once

#include <animationmodel/play.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

// A show for lights on DMX universes: an animation with a layer for each channel, called after the
// universe and the channel, and values from 0 to 255.

/// The layer of a channel, such as "0001.005". Names sort as the numbers do.
std::string channel_name(unsigned int universe, unsigned int channel);

/// The universe and the channel, from 1 to 512, that a layer is called after. Zeros before the
/// numbers may be left out: "1.5". Throws std::runtime_error, naming it, if it is called otherwise.
std::pair<unsigned int, unsigned int> channel_of(const std::string& layer);

/// A value as a channel sends it: rounded, from 0 to 255.
std::uint8_t dmx_value(float value);

/// The values of each universe, from channel 1 to the last one that has a value.
using Universes = std::map<unsigned int, std::vector<std::uint8_t>>;

/// What the universes of a show send, frame by frame; the show has to outlive it.
class DmxPlayer {
public:
    /// Throws std::runtime_error that names a layer that is called after no channel.
    explicit DmxPlayer(const Kiv::LayerMap& layers);

    /// The universes on `frame`, until the next call.
    const Universes& seek(unsigned int frame);

    unsigned int next = 0; ///< The next frame on which they may send something else, if any.

private:
    Kiv::Player player;
    Universes universes;
    /// For each track its universe, and its channel counted from 0.
    std::vector<std::pair<unsigned int, std::size_t>> places;
};
