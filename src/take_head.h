#pragma once

#include <animationmodel/AnimationKey.h>

namespace Kiv {

/// Cuts `key` at `frame`, which lies strictly inside it: returns the piece before, and leaves the
/// rest in `key`. Every cut of a key at a frame is made here.
AnimationKey take_head(AnimationKey& key, unsigned int frame);

} // namespace Kiv
