#include "Colour.h"

#include <algorithm>
#include <cmath>

using namespace Kiv;

ValueRange::ValueRange(const Animation& animation) {
    bool first = true;
    for (const auto& [name, layer] : animation.layers)
        for (const AnimationKey& key : layer)
            for (const float value : key.command.args) {
                if (!std::isfinite(value))
                    continue;
                least = first ? value : std::min(least, value);
                greatest = first ? value : std::max(greatest, value);
                first = false;
            }
}

int ValueRange::level(float value) const {
    if (!(least < greatest))
        return value < 0 || value > 0 ? 255 : 0;
    const double range = double{greatest} - least; // which may be more than a float holds
    const double part = (double{value} - least) / range;
    return part > 0 ? static_cast<int>(std::lround(std::min(part, 1.0) * 255)) : 0;
}

Colour colour_of(int level) {
    const auto between = [level](int from, int to) { return from + (to - from) * level / 255; };
    return {between(44, 255), between(64, 209), between(128, 102)};
}
