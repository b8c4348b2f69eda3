#pragma once

#include <animationmodel/Animation.h>

#include <string>

/// The show in a file, as a recording would have it: at 1000 frames per second, with a layer for
/// each channel. The file is a recording of `ola_recorder`, or an animation as JSON, whose layers
/// are called after channels; then the ends of its keys are moved to the nearest millisecond, and a
/// key that then lasts none is gone.
/// Throws std::runtime_error, naming the file, for what is neither, for a layer that is called
/// otherwise or after the same channel as another one, and for what `change_frame_rate` refuses.
Kiv::Animation read_show(const std::string& path);

/// Writes a show: as JSON where the name of the file ends in ".json", else as a recording.
void write_show(const Kiv::Animation& show, const std::string& path);
