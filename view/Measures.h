#pragma once

#include <animationmodel/Animation.h>

#include <cstddef>
#include <cstdint>
#include <string>

// What is said of animations, and where their keys stand.

/// A value as people write it, with so many digits.
std::string number(float value, int digits);

/// A value as it stands on a key: two digits do, and more only before the point.
std::string label(float value);

/// "76 frames, 3.04 s at 25 fps, intro 32, outro 12".
std::string measures(const Kiv::Animation& animation);

/// How many keys all layers have together.
std::size_t count_keys(const Kiv::LayerMap& layers);

/// So many frames between two marks of a ruler that they stand `least` or more apart.
std::uint64_t ruler_step(std::uint64_t least);

/// Calls `visit` with each key of a layer and the frame on which it begins.
template <class Visit>
void for_each_key(const Kiv::KeyVector& layer, const Visit& visit) {
    std::uint64_t begin = 0;
    for (const Kiv::AnimationKey& key : layer) {
        visit(key, begin);
        begin += key.duration;
    }
}
