#pragma once

#include <animationmodel/Animation.h>

#include <ostream>

/// Writes one row of text for each layer, at most `width` columns wide (or 20, if that is more),
/// under a ruler of frames.
void print_timeline(std::ostream& out, const Kiv::Animation& animation, unsigned int width,
                    bool coloured);
