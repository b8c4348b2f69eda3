#pragma once

#include <animationmodel/Animation.h>

#include <ostream>
#include <string>

/// Writes what a show holds that was read from a file of `format`: its length, the milliseconds in
/// which it steps, universes and channels, keys by effect, and the channels that are never lit.
void describe(std::ostream& out, const Kiv::Animation& show, const std::string& format);

/// The same as JSON, for programs.
void describe_as_json(std::ostream& out, const Kiv::Animation& show, const std::string& format);
