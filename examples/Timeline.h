#pragma once

#include <animationmodel/Animation.h>

#include <ostream>
#include <string>

/// The least and the greatest value in an animation, by which colours are chosen.
struct ValueRange {
    explicit ValueRange(const Kiv::Animation& animation);

    /// 0 for the least value to 255 for the greatest.
    int level(float value) const;

    float least = 0;
    float greatest = 0;
};

struct Colour {
    int red, green, blue;
};

/// From dim blue at level 0 to warm yellow at 255.
Colour colour_of(int level);

/// A value as people write it, with so many digits.
std::string number(float value, int digits);

/// A value as it stands on a key: two digits do, and more only before the point.
std::string label(float value);

/// "76 frames, 3.04 s at 25 fps, intro 32, outro 12".
std::string measures(const Kiv::Animation& animation);

/// So many frames between two marks of a ruler that they stand `least` or more apart.
unsigned int ruler_step(unsigned int least);

/// Calls `visit` with each key of a layer and the frame on which it begins.
template <class Layer, class Visit>
void for_each_key(Layer& layer, const Visit& visit) {
    unsigned int begin = 0;
    for (auto& key : layer) {
        const unsigned int end = begin + key.duration; // should `visit` change it
        visit(key, begin);
        begin = end;
    }
}

/// Writes one row of text for each layer, at most `width` columns wide (or 20, if that is more),
/// under a ruler of frames.
void print_timeline(std::ostream& out, const Kiv::Animation& animation, unsigned int width,
                    bool coloured);
