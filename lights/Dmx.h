#pragma once

#include <animationmodel/Animation.h>

#include <cstdint>
#include <map>
#include <optional>
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

/// A value as a channel sends it: rounded, from 0 to 255; 0 for a NaN.
std::uint8_t dmx_value(float value);

/// Puts in the place of each `Wait` key what it means for a light, which keeps what it had: the end
/// value of the last key with a value. Before any key, and after `NoValue`, that is nothing. Layers
/// that end before the show go on so to its end.
void settle(Kiv::LayerMap& layers);

/// Whether a channel with these keys, which are settled, ever shows more than 0.
bool is_lit(const Kiv::KeyVector& keys);

/// The values of each universe, from channel 1 to the last one that has a value; 0 for those
/// without one in between.
using Universes = std::map<unsigned int, std::vector<std::uint8_t>>;

/// What the universes of a show send, frame by frame. `Wait` keys count as `settle` has them.
class DmxPlayer {
public:
    /// Throws std::runtime_error that names a layer that is called after no channel.
    explicit DmxPlayer(Kiv::LayerMap given);

    /// Goes on to `frame`, which is not before the one where it stands, and says what the universes
    /// send, until the next call. Costs the channels that have changed since.
    const Universes& seek(unsigned int frame);

    unsigned int next = 0; ///< The next frame on which a universe may send something else, if any.
    std::vector<unsigned int> changed; ///< The universes that may since the last call, in order.

private:
    struct Channel {
        /// Goes on to `frame`, and says what the channel shows.
        std::optional<std::uint8_t> seek(unsigned int frame);
        std::uint8_t levelAt(std::uint64_t frame) const;

        unsigned int universe;
        std::size_t index; ///< Counted from 0.
        const Kiv::KeyVector* keys;
        std::size_t key = 0;     ///< That plays; past the last one at the end.
        std::uint64_t begin = 0; ///< The frame on which it begins.
        std::uint64_t next = 0;  ///< The next frame on which it may show something else.
    };

    void show(const Channel& channel, std::optional<std::uint8_t> level);

    Kiv::LayerMap layers;
    std::vector<Channel> channels;
    std::vector<std::pair<std::uint64_t, std::size_t>> due; ///< A heap: frames, and their channels.
    Universes universes;
    std::map<unsigned int, std::vector<bool>> lit; ///< Which channels have a value.
};
