#pragma once

#include <animationmodel/AnimationKey.h>

#include <cfloat>

// The values at a cut are exact to the bit only if each step is rounded to single precision.
static_assert(FLT_EVAL_METHOD == 0, "build for a processor mode without excess precision");
#ifdef __FAST_MATH__
#error "build without -ffast-math"
#endif

namespace Kiv {

inline bool moves(const AnimationKey& key) {
    return key.command.effect == Transition && key.command.args.size() == 2;
}

/// Cuts `key` at `frame`, which lies strictly inside it: returns the piece before, and leaves the
/// rest in `key`. Every cut of a key at a frame is made here.
inline AnimationKey take_head(AnimationKey& key, unsigned int frame) {
    AnimationKey head = key;
    if (moves(key)) {
        const float middle =
            transition_value(key.command.args[0], key.command.args[1], frame, key.duration);
        head.command.args[1] = middle;
        key.command.args[0] = middle;
    }
    head.duration = frame;
    key.duration -= frame;
    return head;
}

} // namespace Kiv
