#pragma once

#include <animationmodel/Animation.h>

#include <istream>
#include <ostream>
#include <string>

// Recordings of light shows in the format of the Open Lighting Architecture's `ola_recorder`:
//
//     OLA Show
//     1 255,0,7       universe 1: what its channels 1 to 3 show
//     40              for so many milliseconds
//     1 254,0,7
//     0               at the same time
//     2 9,9
//
// A recording is an animation at 1000 frames per second, so that frames are milliseconds. It has a
// layer for each channel: one Hold for as long as a value stays, NoValue while the channel is not
// sent.

constexpr unsigned int mostFrames = (1U << 31) - 1;

/// The recording in a stream, which errors call `name`. A last line of values without milliseconds
/// lasts for one. Throws std::runtime_error that names the line if it is not a recording, or if it
/// is more than `limits` allow.
Kiv::Animation read_recording(std::istream& in, const std::string& name);

/// Writes what the channels show on every frame, a line whenever a universe changes. Layers are
/// called by `channel_name`. A channel without a value is not sent, except as 0 where a later
/// channel of its universe has a value.
void write_recording(std::ostream& out, const Kiv::Animation& show);
