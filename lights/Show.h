#pragma once

#include <animationmodel/Animation.h>

#include <cstdint>
#include <functional>
#include <string>

/// The show in a file, as a recording would have it: at 1000 frames per second, with a layer for
/// each channel. The file is a recording of `ola_recorder`, or an animation as JSON, whose layers
/// are called after channels; then the ends of its keys are moved to the nearest millisecond, and a
/// key that then lasts none is gone.
/// Throws std::runtime_error, naming the file, for what is neither, for a layer that is called
/// otherwise or after the same channel as another one, and for a show that would be too long.
Kiv::Animation read_show(const std::string& path);

/// Writes a show: as JSON where the name of the file ends in ".json", else as a recording.
void write_show(const Kiv::Animation& show, const std::string& path);

/// Moves the ends of all keys and of the intro, and the start of the outro, as `moved` tells, which
/// never moves a later frame before an earlier one. A key that then lasts no frame is gone.
void move_ends(Kiv::Animation& show, const std::function<unsigned int(std::uint64_t)>& moved);
