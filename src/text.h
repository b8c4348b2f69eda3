#pragma once

#include <concepts>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

// Texts without streams, which a small program would pay for: they are larger than all the rest.
namespace Kiv {

/// What printf writes in the program's locale, with a point whatever the locale has in its place.
inline std::string with_point(std::string_view written) {
    std::string text(written);
    const auto mark = text.find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyz+-");
    if (mark != std::string::npos)
        text.replace(mark, text.find_first_of("0123456789", mark) - mark, 1, '.');
    return text;
}

inline void append_piece(std::string& text, std::string_view piece) {
    text += piece;
}

inline void append_piece(std::string& text, std::integral auto number) {
    text += std::to_string(number);
}

/// With up to six digits.
inline void append_piece(std::string& text, float number) {
    char written[24];
    std::snprintf(written, sizeof written, "%g", static_cast<double>(number));
    text += with_point(written);
}

/// The pieces one after another, the same in every locale.
template <class... Pieces>
std::string text_of(const Pieces&... pieces) {
    std::string text;
    (append_piece(text, pieces), ...);
    return text;
}

/// Throws std::invalid_argument with the pieces one after another as its text.
template <class... Pieces>
[[noreturn]] void refuse(const Pieces&... pieces) {
    throw std::invalid_argument(text_of(pieces...));
}

} // namespace Kiv
