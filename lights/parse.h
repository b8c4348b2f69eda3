#pragma once

#include <charconv>
#include <optional>
#include <string_view>

/// The number that `word` is; none if it is anything else, or more than a number.
template <class Value>
std::optional<Value> parse(std::string_view word) {
    Value number{};
    const char* const last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, number);
    if (error != std::errc() || end != last)
        return std::nullopt;
    return number;
}
