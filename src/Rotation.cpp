#include <animationmodel/Rotation.h>

#include "refuse.h"

#include <algorithm>
#include <cstdint>

namespace Kiv {

Rotation::Rotation(float pulseValue, float restValue, unsigned int riseDuration,
                   unsigned int fallDuration, unsigned int stepDuration)
    : pulseValue(pulseValue), restValue(restValue), riseDuration(riseDuration),
      fallDuration(fallDuration), stepDuration(stepDuration) {
    _init();
}

Rotation::Rotation(const Rotation& other) = default;
Rotation::Rotation(Rotation&& other) noexcept = default;
Rotation::~Rotation() = default;

void Rotation::_init() {
    constexpr unsigned int outputs = 8;
    const std::uint64_t revolution = std::uint64_t{outputs} * stepDuration;
    const std::uint64_t pulse = std::uint64_t{riseDuration} + fallDuration;
    const std::uint64_t period = std::max(revolution, pulse);
    const std::uint64_t duration = revolution - stepDuration + period + pulse;
    if (duration >= tooLong)
        refuse("Rotation would last ", duration, " frames but should last less than ", tooLong);

    const AnimationKeyCommand resting(Hold, make_vector(restValue));
    const auto hold = [&resting](std::uint64_t frames) {
        return AnimationKey(resting, static_cast<unsigned int>(frames));
    };
    const AnimationKey rise({Transition, make_vector(restValue, pulseValue)}, riseDuration);
    const AnimationKey fall({Transition, make_vector(pulseValue, restValue)}, fallDuration);
    KeyVector pulses{rise, fall};
    if (revolution > pulse)
        pulses.push_back(hold(revolution - pulse));
    pulses.insert(pulses.end(), {rise, fall});

    std::string name = "FaceLed0";
    for (unsigned int i = 0; i < outputs; ++i, ++name.back()) {
        KeyVector keys;
        keys.reserve(pulses.size() + 2);
        if (i > 0)
            keys.push_back(hold(std::uint64_t{i} * stepDuration));
        keys.insert(keys.end(), pulses.begin(), pulses.end());
        if (i < outputs - 1)
            keys.push_back(hold(std::uint64_t{outputs - 1 - i} * stepDuration));
        layers.emplace_hint(layers.end(), name, std::move(keys));
    }
    introSize = static_cast<unsigned int>(revolution);
    outroSize = static_cast<unsigned int>(duration - std::min(duration, 2 * revolution));
}

} // namespace Kiv
