#pragma once

#include <charconv>
#include <optional>
#include <string_view>

/// `word` as a number, or nothing unless all of it is one that fits.
template <class Value>
std::optional<Value> parse(std::string_view word) {
    Value number{};
    const char* const last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, number);
    if (error != std::errc() || end != last)
        return std::nullopt;
    return number;
}
