#pragma once

#include <animationmodel/Animation.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// The value that a layer has on `frame`; nothing where it has none, and past its end.
std::optional<float> value_at(const Kiv::KeyVector& layer, unsigned int frame);

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

/// A value as people write it.
std::string number(float value);

/// "76 frames, 3.04 s at 25 fps, intro 32, outro 12".
std::string measures(const Kiv::Animation& animation);

/// Writes one row of text for each layer, at most `width` columns wide, under a ruler of frames.
void print_timeline(std::ostream& out, const Kiv::Animation& animation, unsigned int width,
                    bool coloured);

/// Draws the animation as a picture with a heading, in SVG.
void write_svg(std::ostream& out, const std::string& title, const Kiv::Animation& animation);
