#pragma once

#include <animationmodel/Animation.h>

#include <cstdio>
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
        float a = 0, b = 0;
        unsigned int duration = 0;
        int effect = word[0] == 'N' ? NoValue : Wait;
        const char* const from = word.c_str();
        if (std::sscanf(from, "T%f,%f:%u", &a, &b, &duration) == 3)
            result.push_back({{Transition, {a, b}}, duration});
        else if (std::sscanf(from, "H%f:%u", &a, &duration) == 2)
            result.push_back({{Hold, {a}}, duration});
        else if (std::sscanf(from, "%*1[NW]:%u", &duration) == 1 ||
                 std::sscanf(from, "E%d:%u", &effect, &duration) == 2)
            result.push_back({AnimationKeyCommandEffect(effect), duration});
        else
            throw std::logic_error("not a key: " + word);
    }
    return result;
}

/// The animation that the text shows, neither filled nor checked: as edits may leave one.
inline Animation animation(const std::string& text) {
    Animation result;
    const auto bar = text.find(" | ");
    std::istringstream parts(text.substr(0, bar));
    for (std::string part; std::getline(parts >> std::ws, part, ';');) {
        const auto colon = part.find(": ");
        result.layers[part.substr(0, colon)] = keys(part.substr(colon + 1));
    }
    if (bar != std::string::npos)
        std::istringstream(text.substr(bar + 3)) >> result.introSize >> result.outroSize;
    return result;
}

/// Takes results at which a test does not look.
template <class... Results>
void drop(const Results&... /*results*/) {}

/// What std::invalid_argument says that `call` throws, or "" if it throws none.
template <class Call>
std::string refusal(const Call& call) {
    try {
        static_cast<void>(call());
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

} // namespace Kiv
