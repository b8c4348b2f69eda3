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
/// first revolution, the outro what lies behind the second one: nothing, if the pulse is no longer
/// than a step. The frame rate is `Animation::defaultFps`.
///
/// Otherwise an animation like any other. The fields describe how it was built and do not change
/// when it is edited; so one rotation cannot be assigned to another.
class ANIMATIONMODEL_EXPORT Rotation : public Animation {
public:
    /// Durations are in frames. The two values may be any, the pulse below the rest too.
    /// Throws std::invalid_argument if a duration is 0, if the rotation would last 2^31 frames or
    /// more, or if `defaultFps` is 0 or less.
    Rotation(float pulseValue, float restValue, unsigned int riseDuration,
             unsigned int fallDuration, unsigned int stepDuration);

    Rotation(const Rotation& other);     ///< As for an animation.
    Rotation(Rotation&& other) noexcept; ///< As for an animation.
    Rotation& operator=(const Rotation&) = delete;
    Rotation& operator=(Rotation&&) = delete;
    ~Rotation() override;

    const float pulseValue;          ///< What each pulse reaches at its top.
    const float restValue;           ///< What a layer holds before, between and after its pulses.
    const unsigned int riseDuration; ///< Frames from rest to pulse.
    const unsigned int fallDuration; ///< Frames from pulse back to rest.
    const unsigned int stepDuration; ///< Frames by which each layer comes after the one before it.

protected:
    /// Builds the layers and sets the sizes; for the constructor, which has no layers yet.
    void _init();
};

} // namespace Kiv
