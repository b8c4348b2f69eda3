#pragma once

#include <animationmodel/Animation.h>

/// The least and the greatest finite value in an animation, by which colours are chosen.
struct ValueRange {
    explicit ValueRange(const Kiv::Animation& animation);

    /// 0 for the least value to 255 for the greatest. Where there is only one value, it is the
    /// greatest unless it is 0. 0 for a NaN.
    int level(float value) const;

    float least = 0;
    float greatest = 0;
};

struct Colour {
    int red, green, blue;
};

/// From dim blue at level 0 to warm yellow at 255.
Colour colour_of(int level);
