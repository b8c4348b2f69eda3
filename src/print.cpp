#include <animationmodel/Animation.h>

#include "text.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>
#include <utility>

// What writes keys and animations to a stream, the same in every locale.
namespace Kiv {

namespace {

bool reads_back(const std::string& text, float value) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    float read = 0;
    in >> read;
    // A number too great for a float fails. One too small for a normal float may fail too, but is
    // read all the same.
    return read == value && (in || std::abs(value) < 1);
}

/// The shortest text that reads back as the same float.
std::string shortest(float value) {
    if (!std::isfinite(value))
        return text_of(value);
    // The numbers that read back as a power of two reach further up than down.
    const double next = std::nextafter(value, std::copysign(HUGE_VALF, value));
    const double middle = value + (next - value) / 8;
    const auto scientific = [&](int decimals) {
        std::string text = text_of(std::scientific, std::setprecision(decimals), value);
        if (reads_back(text, value))
            return text;
        const std::string other = text_of(std::scientific, std::setprecision(decimals), middle);
        return reads_back(other, value) ? other : "";
    };
    int decimals = 8; // always read back; then so does any text with more than the shortest one
    for (const int step : {4, 2, 1, 1})
        if (decimals >= step && !scientific(decimals - step).empty())
            decimals -= step;
    const std::string text = scientific(decimals);
    const int exponent = std::stoi(text.substr(text.find('e') + 1));
    const std::string fixed =
        text_of(std::fixed, std::setprecision(std::max(0, decimals - exponent)), value);
    return fixed.size() <= text.size() ? fixed : text;
}

std::string name_of(AnimationKeyCommandEffect effect) {
    switch (effect) {
    case Transition: return "Transition";
    case Hold: return "Hold";
    case NoValue: return "NoValue";
    case Wait: return "Wait";
    }
    return text_of("Effect ", static_cast<std::int32_t>(effect));
}

} // namespace

std::ostream& operator<<(std::ostream& out, const AnimationKeyCommand& command) {
    std::string text = name_of(command.effect);
    const char* before = " (";
    for (const float value : command.args)
        text += std::exchange(before, ", ") + shortest(value);
    return out << (command.args.empty() ? text : text + ")");
}

std::ostream& operator<<(std::ostream& out, const AnimationKey& key) {
    return out << key.command << text_of(" over ", key.duration);
}

std::ostream& operator<<(std::ostream& out, const KeyVector& layer) {
    if (layer.empty())
        return out << "no keys";
    const char* before = "";
    for (const AnimationKey& key : layer)
        out << std::exchange(before, ", ") << key;
    return out;
}

std::ostream& operator<<(std::ostream& out, const Animation& animation) {
    out << shortest(animation.fps)
        << text_of(" fps, intro ", animation.introSize, ", outro ", animation.outroSize);
    for (const auto& [name, keys] : animation.layers)
        out << '\n' << name << ": " << keys;
    return out;
}

} // namespace Kiv
