#include "Text.h"

namespace {

/// As many bytes at the start of `text` as `most`, and no part of a character.
std::string_view start_of(std::string_view text, std::size_t most) {
    if (text.size() <= most)
        return text;
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xc0U) == 0x80)
        --most;
    return text.substr(0, most);
}

/// Appends a text, whatever a terminal might obey escaped.
void append_escaped(std::string& result, std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = character(text);
        const auto first = static_cast<unsigned char>(text[0]);
        const bool obeyed =
            size == 2 && first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0;
        if (size > 0 && !obeyed) {
            result += text.substr(0, size);
            text.remove_prefix(size);
            continue;
        }
        constexpr const char* digits = "0123456789abcdef";
        result.append("\\x").append(1, digits[first / 16]).append(1, digits[first % 16]);
        text.remove_prefix(1);
    }
}

} // namespace

std::size_t character(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t size = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if (text.size() < size || (first >= 0x80 && first < 0xc2) || first > 0xf4)
        return 0;
    unsigned int code = size == 1 ? first : first & (0x7fU >> size);
    for (const char next : text.substr(1, size - 1)) {
        if ((static_cast<unsigned char>(next) & 0xc0U) != 0x80)
            return 0;
        code = code << 6 | (static_cast<unsigned char>(next) & 0x3fU);
    }
    const unsigned int least[] = {0x20, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    const bool allowed = code >= least[size - 1] && !surrogate && code < 0x110000 && code != 0x7f &&
                         code != 0xfffe && code != 0xffff;
    return allowed ? size : 0;
}

std::string printable(std::string_view text) {
    constexpr std::size_t half = 500;
    std::string result;
    if (text.size() > 2 * half) {
        append_escaped(result, start_of(text, half));
        result += " ... ";
        text.remove_prefix(text.size() - half);
    }
    append_escaped(result, text);
    return result;
}

std::string in_quotes(std::string_view word) {
    constexpr std::size_t most = 60;
    std::string result(1, '"');
    return result.append(printable(start_of(word, most)))
        .append(word.size() > most ? "...\"" : "\"");
}
