#pragma once

#include <animationmodel/Animation.h>

#include <ostream>
#include <string>

/// Draws the animation as a picture with a heading, in SVG: its layers as lamps that play it at its
/// frame rate, over and over, and below them its timeline, along which a mark travels. Where
/// pictures do not move the lamps show frame 0.
void write_svg(std::ostream& out, const std::string& title, const Kiv::Animation& animation);

/// The picture that `write_svg` draws.
std::string svg_of(const std::string& title, const Kiv::Animation& animation);
