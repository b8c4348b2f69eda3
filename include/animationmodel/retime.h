#pragma once

#include <animationmodel/Animation.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

/// \file
/// Animations at another frame rate, or of another length.
///
///     before              | A | B B B | C C C C |
///     stretch_to(it, 3)   | B B | C |                  the ends are at 0.375, 1.5 and 3
///
/// Every boundary goes to the frame that is nearest to its new time, halves upwards: the ends of
/// keys and of the intro, and the start of the outro. Times are counted from frame 0, so nothing
/// drifts, and layers stay in step. A key that is left without frames goes. Sizes that edits have
/// left too great are moved as times, too, up to 2^32 - 1.

namespace Kiv {

/// \cond
namespace retiming {

/// `numerator` / `denominator` x 2^`exponent`: both are below 2^32, and below 2^24 where there is
/// an exponent.
struct Ratio {
    std::uint64_t numerator, denominator;
    int exponent;

    /// `frame`, which is below 2^32, times the ratio, rounded; or more than 2^32.
    std::uint64_t operator()(std::uint64_t frame) const {
        constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
        std::uint64_t above = frame * numerator;
        std::uint64_t below = denominator;
        std::uint64_t& shifted = exponent < 0 ? below : above;
        const auto shift = static_cast<unsigned int>(std::abs(exponent));
        if (shift >= 64 || shifted > most >> shift)
            return exponent < 0 || above == 0 ? 0 : most;
        shifted <<= shift;
        const std::uint64_t rest = above % below;
        return above / below + (rest >= below - rest ? 1 : 0);
    }
};

/// A rate as a whole number below 2^24 times a power of two.
inline std::uint64_t whole_of(float rate, int& exponent) {
    const float part = std::frexp(rate, &exponent);
    exponent -= std::numeric_limits<float>::digits;
    return static_cast<std::uint64_t>(std::ldexp(part, std::numeric_limits<float>::digits));
}

inline void check_length(std::uint64_t frames, const char* lasts) {
    if (frames >= std::uint64_t{1} << 31)
        throw std::invalid_argument(std::string("Animation ") + lasts +
                                    " 2147483648 frames or more");
}

/// Moves all boundaries of an animation of `duration` frames.
inline void move_boundaries(Animation& it, std::uint64_t duration, const Ratio& moved) {
    check_length(duration, "lasts");
    check_length(moved(duration), "would last");
    const auto size_of = [](std::uint64_t frames) {
        constexpr std::uint64_t most = std::numeric_limits<unsigned int>::max();
        return static_cast<unsigned int>(std::min(frames, most));
    };
    it.introSize = size_of(moved(it.introSize));
    it.outroSize = it.outroSize > duration
                       ? size_of(moved(it.outroSize))
                       : size_of(moved(duration) - moved(duration - it.outroSize));
    for (auto& [name, keys] : it.layers) {
        std::uint64_t end = 0;
        std::uint64_t movedEnd = 0;
        for (AnimationKey& key : keys) {
            const std::uint64_t begin = movedEnd;
            movedEnd = moved(end += key.duration);
            key.duration = static_cast<unsigned int>(movedEnd - begin);
        }
        keys.erase(std::remove_if(keys.begin(), keys.end(),
                                  [](const AnimationKey& key) { return key.duration == 0; }),
                   keys.end());
    }
}

} // namespace retiming
/// \endcond

/// Sets the frame rate to `fps`, and moves all boundaries so that the animation lasts as many
/// seconds as before. Both rates count as the exact values of their floats: at twice the rate and
/// then at half of that again, keys are what they were, and so are sizes that fit.
///
/// Throws std::invalid_argument, and changes nothing, if `fps` or the animation's own rate is not
/// above 0 or not finite, or if a layer lasts 2^31 frames or more, before or after. Allocates
/// nothing else. Costs all keys.
inline void change_frame_rate(Animation& animation, float fps) {
    for (const float rate : {animation.fps, fps})
        if (!(rate > 0) || std::isinf(rate))
            throw std::invalid_argument("Frame rates (" + shortest_text(animation.fps) + " and " +
                                        shortest_text(fps) +
                                        ") should be above 0 and finite to change them");
    int before = 0;
    int after = 0;
    const std::uint64_t denominator = retiming::whole_of(animation.fps, before);
    const std::uint64_t numerator = retiming::whole_of(fps, after);
    retiming::move_boundaries(animation, full_duration(animation.layers),
                              {numerator, denominator, after - before});
    animation.fps = fps;
}

/// Moves all boundaries so that the animation lasts `frames` frames. The frame rate stays.
///
/// Throws std::invalid_argument, and changes nothing, if `frames` is 0 for an animation with
/// frames, or not 0 for one without any, or if a layer lasts 2^31 frames or more, before or after.
/// Costs all keys.
inline void stretch_to(Animation& animation, unsigned int frames) {
    const std::uint64_t duration = full_duration(animation.layers);
    if ((duration == 0) != (frames == 0))
        throw std::invalid_argument("An animation of " + std::to_string(duration) +
                                    " frames cannot last " + std::to_string(frames));
    if (duration > 0)
        retiming::move_boundaries(animation, duration, {frames, duration, 0});
}

/// A length is in frames: 0.5 would become 0.
template <class Float, class = std::enable_if_t<std::is_floating_point_v<Float>>>
void stretch_to(Animation& animation, Float frames) = delete;

} // namespace Kiv
