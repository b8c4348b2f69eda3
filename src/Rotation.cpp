#include <animationmodel/Rotation.h>

#include "frames.h"

#include <algorithm>

namespace Kiv {

Rotation::Rotation(float pulseValue, float restValue, unsigned int riseDuration,
                   unsigned int fallDuration, unsigned int stepDuration)
    : pulseValue(pulseValue), restValue(restValue), riseDuration(riseDuration),
      fallDuration(fallDuration), stepDuration(stepDuration) {
    _init();
}

void Rotation::_init() {
    constexpr unsigned int outputs = 8;
    const AnimationKey rise({Transition, {restValue, pulseValue}}, riseDuration);
    const AnimationKey fall({Transition, {pulseValue, restValue}}, fallDuration);
    const AnimationKey step({Hold, {restValue}}, stepDuration);
    const auto hold = [&step](std::uint64_t frames) {
        return AnimationKey(step.command, static_cast<unsigned int>(frames));
    };
    const std::uint64_t revolution = std::uint64_t{outputs} * stepDuration;
    const std::uint64_t pulse = std::uint64_t{riseDuration} + fallDuration;
    const std::uint64_t period = std::max(revolution, pulse);
    check_length(durationInFrames() + (revolution - stepDuration) + period + pulse,
                 "Rotation would last ");

    KeyVector pulses{rise, fall};
    if (revolution > pulse)
        pulses.push_back(hold(revolution - pulse));
    pulses.insert(pulses.end(), {rise, fall});

    LayerMap built = layers;
    KeyVector* rows[outputs];
    std::string name = "FaceLed0";
    for (unsigned int i = 0; i < outputs; ++i, ++name.back()) {
        rows[i] = &built[name];
        KeyVector keys;
        keys.reserve(rows[i]->size() + pulses.size() + 2);
        if (i > 0)
            keys.push_back(hold(std::uint64_t{i} * stepDuration));
        keys.insert(keys.end(), rows[i]->begin(), rows[i]->end());
        keys.insert(keys.end(), pulses.begin(), pulses.end());
        rows[i]->swap(keys);
    }
    const unsigned int duration = durationInFramesOf(built);
    for (KeyVector* row : rows)
        if (const unsigned int missing = duration - durationInFramesOf(*row))
            row->push_back(hold(missing));
    layers.swap(built);
    introSize = static_cast<unsigned int>(revolution);
    outroSize =
        static_cast<unsigned int>(duration - std::min<std::uint64_t>(duration, 2 * revolution));
}

} // namespace Kiv
