#pragma once

#include "Picture.h"
#include "Player.h"

#include <animationmodel/Animation.h>

#include <cstddef>
#include <limits>
#include <sstream>
#include <string>

// What other languages take from an animation, beside its JSON.

/// How many keys all layers have together.
inline std::size_t count_keys(const Kiv::LayerMap& layers) {
    std::size_t count = 0;
    for (const auto& [name, keys] : layers)
        count += keys.size();
    return count;
}

/// The picture that `write_svg` draws.
inline std::string svg_of(const std::string& title, const Kiv::Animation& animation) {
    std::ostringstream text;
    write_svg(text, title, animation);
    return text.str();
}

/// Puts the values of the frames [start, start + count) into `values`, one frame after another: a
/// value for each layer, in their order, and a NaN where there is none. There has to be room for
/// `count` x layers.
inline void sample(const Kiv::LayerMap& layers, unsigned int start, unsigned int count,
                   float* values) {
    Player player(layers);
    for (unsigned int i = 0; i < count; ++i) {
        player.seek(start + i);
        for (const Track& track : player)
            *values++ = track.value().value_or(std::numeric_limits<float>::quiet_NaN());
    }
}
