#include <animationmodel/AnimationKeyCommand.h>

#include "text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

// In a source of its own: the tables of std::to_chars are larger than the rest of the library.
namespace Kiv {

#ifdef __cpp_lib_to_chars

/// Empty if the text, read as a double, is halfway to the next float, such as 7.038531e-26.
static std::string by_to_chars(float value) {
    char text[40];
    double read = 0;
    const char* const end = std::to_chars(text, text + sizeof text, value).ptr;
    std::from_chars(text, end, read);
    return static_cast<float>(read) == value ? std::string(static_cast<const char*>(text), end)
                                             : "";
}

#else

static std::string by_to_chars(float /*value*/) {
    return "";
}

#endif

/// The text of `number` by printf's format with so many decimals, if it reads back as `value`.
static std::string read_back(const char* format, int decimals, double number, float value) {
    char text[80];
    std::snprintf(text, sizeof text, format, decimals, number);
    const bool same = std::strtof(text, nullptr) == value &&
                      static_cast<float>(std::strtod(text, nullptr)) == value;
    return same ? with_point(text) : "";
}

static std::string by_printf(float value) {
    // The numbers that read back as a power of two reach further up than down.
    const double next = std::nextafter(value, std::copysign(HUGE_VALF, value));
    const double numbers[] = {value, value + (next - value) / 8};
    for (int decimals = 0;; ++decimals)
        for (const double number : numbers) {
            const std::string text = read_back("%.*e", decimals, number, value);
            if (text.empty())
                continue;
            const int exponent = std::atoi(text.c_str() + text.find('e') + 1);
            const int places = std::max(0, decimals - exponent);
            const std::string fixed = read_back("%.*f", places, number, value);
            return fixed.empty() || fixed.size() > text.size() ? text : fixed;
        }
}

std::string shortest_text(float value) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";
    const std::string text = by_to_chars(value);
    return text.empty() ? by_printf(value) : text;
}

} // namespace Kiv
