#include "Measures.h"

#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

using namespace Kiv;

std::string number(float value, int digits) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setprecision(digits) << value;
    return text.str();
}

std::string label(float value) {
    return std::abs(value) < 10 ? number(value, 2) : number(std::round(value), 4);
}

std::string measures(const Animation& animation) {
    const std::uint64_t frames = full_duration(animation.layers);
    return std::to_string(frames) + " frames, " +
           number(std::abs(static_cast<float>(frames) / animation.fps), 6) + " s at " +
           number(animation.fps, 6) + " fps, intro " + std::to_string(animation.introSize) +
           ", outro " + std::to_string(animation.outroSize);
}

std::size_t count_keys(const LayerMap& layers) {
    std::size_t count = 0;
    for (const auto& [name, keys] : layers)
        count += keys.size();
    return count;
}

std::uint64_t ruler_step(std::uint64_t least) {
    std::uint64_t step = 1;
    for (unsigned int factor = 0; step < least; ++factor)
        step = factor % 3 == 1 ? step / 2 * 5 : step * 2;
    return step;
}
