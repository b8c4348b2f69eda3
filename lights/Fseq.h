#pragma once

#include <animationmodel/Animation.h>

#include <istream>
#include <ostream>
#include <string>

// Rendered light shows, the `.fseq` files that sequencers write and players play: for each step of
// some milliseconds a byte for each channel.
//
//     step          | 0  1  2 | 3  4 |     of 25 milliseconds
//     channel 0     | 9  9  9 | 7  7 |     layer 0001.001: Hold (9) over 75, Hold (7) over 50
//     channel 513   | 0  0  0 | 0  0 |     layer 0002.002: Hold (0) over 125
//
// Channel c is channel c % 512 + 1 of universe c / 512 + 1. As an animation it has 1000 frames per
// second, so that frames are milliseconds, and a layer for each channel that the file has.

/// What such a file holds.
struct Sequence {
    Kiv::Animation show{1000};
    unsigned int step = 25; ///< Milliseconds.
    std::string media;      ///< The name of the file that plays to it; may be empty.
};

/// Reads a file of version 1 or 2.0 to 2.2, which errors call `name`. Takes at most 64 MB and 40
/// bytes for each byte of channel data; if `limited`, 2 GB of these at most.
/// Throws std::runtime_error that names the file if it is none, or is broken.
Sequence read_fseq(std::istream& in, const std::string& name, bool limited);

/// Writes what the channels show at the start of each step, 0 where they are not sent, as version
/// 2.0 without compression. Layers are called by `channel_name`. Only their channels are written,
/// or, where these lie in more than 255 places, some between them too.
/// Throws std::runtime_error for channels that a file cannot have, and for a show without any.
void write_fseq(std::ostream& out, const Kiv::Animation& show, unsigned int step,
                const std::string& media);
