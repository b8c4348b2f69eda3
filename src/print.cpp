#include <animationmodel/Animation.h>

#include "text.h"

#include <cstdint>
#include <ostream>
#include <utility>

// What writes keys and animations to a stream, the same in every locale.
namespace Kiv {

namespace {

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
        text += std::exchange(before, ", ") + shortest_text(value);
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
    out << shortest_text(animation.fps)
        << text_of(" fps, intro ", animation.introSize, ", outro ", animation.outroSize);
    for (const auto& [name, keys] : animation.layers)
        out << '\n' << name << ": " << keys;
    return out;
}

} // namespace Kiv
