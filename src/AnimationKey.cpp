#include <animationmodel/AnimationKey.h>

#include "cut.h"
#include "text.h"

namespace Kiv {

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
    KeyVector pieces;
    pieces.reserve(full + std::size_t{1});
    AnimationKey piece = *this;
    piece.duration = step;
    if (moves(*this)) {
        const float start = command.args[0];
        const float slope = (command.args[1] - start) / static_cast<float>(duration);
        const float delta = static_cast<float>(step) * slope;
        for (unsigned int i = 0; i < full; ++i) {
            const float offset = static_cast<float>(i) * delta;
            piece.command.args[0] = offset + start;
            piece.command.args[1] = piece.command.args[0] + delta;
            pieces.push_back(piece);
        }
        piece.command.args[0] = piece.command.args[1];
        piece.command.args[1] = command.args[1];
    } else {
        pieces.assign(full, piece);
    }
    piece.duration = duration - full * step;
    pieces.push_back(piece);
    return pieces;
}

} // namespace Kiv
