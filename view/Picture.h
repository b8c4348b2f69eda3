#pragma once

#include <animationmodel/Animation.h>

#include <functional>
#include <ostream>
#include <string>

/// Is told again and again how much of all is done.
using PictureProgress = std::function<void(double done, double all)>;

/// Draws the animation as a picture with a heading, in SVG: its layers as lamps that play it at its
/// frame rate, over and over, and below them its timeline, along which a mark travels. Where
/// pictures do not move the lamps show frame 0.
void write_svg(std::ostream& out, const std::string& title, const Kiv::Animation& animation,
               const PictureProgress& progress = {});

/// The picture that `write_svg` draws.
std::string svg_of(const std::string& title, const Kiv::Animation& animation);
