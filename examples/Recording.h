#pragma once

#include "Player.h"

#include <cstdint>
#include <map>
#include <ostream>
#include <utility>

// Recordings of light shows in the format of the Open Lighting Architecture's `ola_recorder`:
//
//     OLA Show
//     1 255,0,7       universe 1: what its channels 1 to 3 show
//     40              for so many milliseconds
//     1 254,0,7
//     0               at the same time
//     2 9,9
//
// A recording is an animation at 1000 frames per second with a layer for each channel: one Hold for
// as long as a value stays, NoValue while the channel is not sent.

constexpr unsigned int mostFrames = (1U << 31) - 1;

/// The layer of a channel. Names sort as the numbers do.
std::string channel_name(unsigned int universe, unsigned int channel);

/// What is in a file; a last line of values without milliseconds lasts for one.
/// Throws std::runtime_error that names file and line if it is not a recording.
Kiv::Animation read_recording(const std::string& path);

/// Writes what the channels show on every frame, a line whenever a universe changes. Layers are
/// named by `channel_name`. A channel without a value is not sent, but 0 before one that has one.
void write_recording(std::ostream& out, const Kiv::Animation& show);

/// The values of each universe, from channel 1 to the last one that has a value.
using Universes = std::map<unsigned int, std::vector<std::uint8_t>>;

/// What the universes of a show send, frame by frame; the show has to outlive it.
class Console {
public:
    explicit Console(const Kiv::LayerMap& layers);

    /// The universes on `frame`, until the next call.
    const Universes& seek(unsigned int frame);

    unsigned int next = 0; ///< The next frame on which they may send something else, if any.

private:
    Player player;
    Universes universes;
    /// For each track its universe, and its channel counted from 0.
    std::vector<std::pair<unsigned int, std::size_t>> places;
};
