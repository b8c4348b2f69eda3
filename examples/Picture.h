#pragma once

#include <animationmodel/Animation.h>

#include <ostream>
#include <string>

/// Draws the animation as a picture with a heading, in SVG.
void write_svg(std::ostream& out, const std::string& title, const Kiv::Animation& animation);
