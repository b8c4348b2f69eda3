#pragma once

#include <charconv>
#include <string>

namespace Kiv {

/// The shortest text that reads back as the same float, whatever the locale.
inline std::string shortest(float value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

} // namespace Kiv
