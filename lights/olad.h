#pragma once

#include <animationmodel/Animation.h>

/// Sends a show of `channel_name` layers to the daemon of the Open Lighting Architecture on this
/// machine, `rate` times a second, until it ends or is interrupted; then the channels go dark.
/// Throws a Failure if there is no daemon or it goes away.
void play_by_olad(const Kiv::Animation& show, unsigned int rate);
