#include <animationmodel/AnimationKey.h>

#include "refuse.h"
#include "take_head.h"

#include <cfloat>

// The values at a cut are exact to the bit only if each step is rounded to single precision.
static_assert(FLT_EVAL_METHOD == 0, "build for a processor mode without excess precision");
#ifdef __FAST_MATH__
#error "build without -ffast-math"
#endif

namespace Kiv {

namespace {

bool moves(const AnimationKey& key) {
    return key.command.effect == Transition && key.command.args.size() == 2;
}

} // namespace

AnimationKey take_head(AnimationKey& key, unsigned int frame) {
    AnimationKey head = key;
    if (moves(key)) {
        const float start = key.command.args[0];
        const float way = key.command.args[1] - start;
        const float scaled = static_cast<float>(frame) * way;
        const float passed = scaled / static_cast<float>(key.duration);
        const float middle = passed + start;
        head.command.args[1] = middle;
        key.command.args[0] = middle;
    }
    head.duration = frame;
    key.duration -= frame;
    return head;
}

AnimationKey::AnimationKey(const AnimationKeyCommand& command, unsigned int duration)
    : command(command), duration(duration) {
    if (duration == 0)
        refuse("Duration of AnimationKeyCommand must be > 0");
}

KeyVector AnimationKey::splitAt(unsigned int frame) const {
    if (frame == 0 || frame >= duration)
        return {*this};
    AnimationKey tail = *this;
    const AnimationKey head = take_head(tail, frame);
    return {head, tail};
}

KeyVector AnimationKey::splitEach(unsigned int step) const {
    if (step == 0)
        refuse("Could not split AnimationKey each 0 frame: This number should be strictly higher "
               "than 0");
    if (duration <= step)
        return {*this};

    const unsigned int full = (duration - 1) / step;
    AnimationKey piece = *this;
    piece.duration = step;
    KeyVector pieces(full + std::size_t{1}, piece);
    pieces.back().duration = duration - full * step;
    if (moves(*this)) {
        const float start = command.args[0];
        const float slope = (command.args[1] - start) / static_cast<float>(duration);
        const float delta = static_cast<float>(step) * slope;
        float to = start;
        for (unsigned int i = 0; i < full; ++i) {
            const float offset = static_cast<float>(i) * delta;
            const float from = offset + start;
            to = from + delta;
            pieces[i].command.args[0] = from;
            pieces[i].command.args[1] = to;
        }
        pieces.back().command.args[0] = to;
    }
    return pieces;
}

} // namespace Kiv
