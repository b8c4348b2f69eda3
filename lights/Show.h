#pragma once

#include <animationmodel/Animation.h>

#include <optional>
#include <ostream>
#include <string>

/// What goes into the rendered shows that are written, and what was read.
struct Rendering {
    unsigned int step() const { return told.value_or(read.value_or(25)); }

    std::optional<unsigned int> told; ///< The milliseconds of a step, if somebody says.
    std::optional<unsigned int> read; ///< Those of the first rendered show that was read.
    std::string media;                ///< The file that plays to that one.
    std::string format;               ///< Of the first show that was read.
};

/// The show in a file, as a recording would have it: at 1000 frames per second, with a layer for
/// each channel. By its first bytes the file is a recording of `ola_recorder`, a rendered show
/// (Fseq.h), or an animation as JSON, whose layers are called after channels; then the ends of its
/// keys are moved to the nearest millisecond, and a key that then lasts none is gone.
/// Throws std::runtime_error, naming the file, for what is neither, for a layer that is called
/// otherwise or after the same channel as another one, and for what `change_frame_rate` refuses.
Kiv::Animation read_show(const std::string& path, Rendering& rendering);

/// Writes a show: as JSON where the name of the file ends in ".json", rendered where it ends in
/// ".fseq", else as a recording.
void write_show(const Kiv::Animation& show, const std::string& path, const Rendering& rendering);
/// The same to a stream, as to a file at `path`.
void write_show(const Kiv::Animation& show, const std::string& path, const Rendering& rendering,
                std::ostream& out);
