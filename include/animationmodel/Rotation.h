#pragma once

#include <animationmodel/Animation.h>
#include <animationmodel/export.h>

namespace Kiv {

/// A pulse that travels twice around a ring of eight outputs, the layers "FaceLed0" to "FaceLed7".
///
///     FaceLed0  | / \ _ _ _ _ _ _ | / \ _ _ _ _ _ _ _ |     / rise, \ fall, _ rest
///     FaceLed1  | _ / \ _ _ _ _ _ | _ / \ _ _ _ _ _ _ |
///     ...                                                    each layer one step later
///     FaceLed7  | _ _ _ _ _ _ _ / | \ _ _ _ _ _ _ / \ |
///
/// A layer rises from `restValue` to `pulseValue`, falls back, and does so again one revolution
/// (8 x `stepDuration`) after its first rise, or at once where the pulse lasts as long or longer.
/// Before, between and after it holds `restValue`; all layers are equally long. The intro is the
/// first revolution. The outro is what lies after the second one: nothing, if the pulse is no
/// longer than a step. The frame rate is `Animation::defaultFps`.
///
/// Otherwise an animation like any other, which is copied, moved and assigned as one. The fields
/// describe how it was built; editing leaves them as they are.
class ANIMATIONMODEL_EXPORT Rotation : public Animation {
public:
    /// Durations are in frames. The two values may be any, the pulse below the rest too.
    /// Throws std::invalid_argument if a duration is 0, if the rotation would last 2^31 frames or
    /// more, or if `defaultFps` is 0 or less.
    Rotation(float pulseValue, float restValue, unsigned int riseDuration,
             unsigned int fallDuration, unsigned int stepDuration);

    friend void swap(Rotation& a, Rotation& b) noexcept { std::swap(a, b); }

    /// As animations compare, and all fields.
    friend bool operator==(const Rotation& a, const Rotation& b) {
        const Animation& base = a;
        return base == b && a.pulseValue == b.pulseValue && a.restValue == b.restValue &&
               a.riseDuration == b.riseDuration && a.fallDuration == b.fallDuration &&
               a.stepDuration == b.stepDuration;
    }
    friend bool operator!=(const Rotation& a, const Rotation& b) { return !(a == b); }

    float pulseValue;          ///< What each pulse reaches at its top.
    float restValue;           ///< What a layer holds before, between and after its pulses.
    unsigned int riseDuration; ///< Frames from rest to pulse.
    unsigned int fallDuration; ///< Frames from pulse back to rest.
    unsigned int stepDuration; ///< Frames by which each layer comes after the one before it.

protected:
    /// Appends the pulses to the eight layers, puts the rest that each begins with before all keys,
    /// fills up to the longest layer with rest, and sets the sizes. If that throws, nothing
    /// changes.
    void _init();
};

} // namespace Kiv
