#pragma once

#include <animationmodel/Animation.h>

#include <sstream>
#include <stdexcept>
#include <string>

// Animations as one line of text, so that a row of a test compares content, order and lengths at
// once: "a: H5:2 T10,20:4; b: W:6 | 2 3" is a layer a of a Hold (5) over 2 frames and a Transition
// (10, 20) over 4, a layer b of a Wait over 6, an intro of 2 frames and an outro of 3. N is
// NoValue, and E7 the effect 7.
namespace Kiv {

inline KeyVector keys(const std::string& text) {
    KeyVector result;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        std::istringstream in(word.substr(1));
        int effect = static_cast<int>(std::string("THNW").find(word[0]));
        if (word[0] == 'E')
            in >> effect;
        std::vector<float> args;
        for (float value = 0; in.peek() != ':' && in >> value; in.peek() == ',' && in.get())
            args.push_back(value);
        unsigned int duration = 0;
        if (in.get() != ':' || !(in >> duration))
            throw std::logic_error("not a key: " + word);
        result.emplace_back(AnimationKeyCommand(AnimationKeyCommandEffect(effect), args), duration);
    }
    return result;
}

inline std::string show(const KeyVector& layer) {
    std::ostringstream out;
    for (const AnimationKey& key : layer) {
        const auto effect = static_cast<std::uint32_t>(key.command.effect);
        out << ' ' << "THNWE"[std::min(effect, 4U)];
        if (effect > 3)
            out << key.command.effect;
        for (std::size_t i = 0; i < key.command.args.size(); ++i)
            out << (i > 0 ? "," : "") << key.command.args[i];
        out << ':' << key.duration;
    }
    return out.str().substr(layer.empty() ? 0 : 1);
}

/// The animation that the text shows, neither filled nor checked: as edits may leave one.
inline Animation animation(const std::string& text) {
    Animation result;
    const auto bar = text.find(" | ");
    std::istringstream parts(text.substr(0, bar));
    for (std::string part; std::getline(parts, part, ';');) {
        const auto colon = part.find(": ");
        const auto first = part.find_first_not_of(' ');
        result.layers[part.substr(first, colon - first)] = keys(part.substr(colon + 2));
    }
    if (bar != std::string::npos)
        std::istringstream(text.substr(bar + 3)) >> result.introSize >> result.outroSize;
    return result;
}

inline std::string show(const LayerMap& layers) {
    std::string text;
    for (const auto& [name, layer] : layers)
        text += (text.empty() ? "" : "; ") + name + ": " + show(layer);
    return text;
}

inline std::string show(const Animation& animation) {
    return show(animation.layers) + " | " + std::to_string(animation.introSize) + " " +
           std::to_string(animation.outroSize);
}

inline void PrintTo(const Animation& animation, std::ostream* out) {
    *out << show(animation);
}

/// What std::invalid_argument says that `call` throws, or "" if it throws none.
template <class Call>
std::string refusal(const Call& call) {
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

/// Sets `Animation::defaultFps` for one scope.
struct DefaultFps {
    explicit DefaultFps(float fps) { Animation::defaultFps = fps; }
    ~DefaultFps() { Animation::defaultFps = 25; }
};

} // namespace Kiv
