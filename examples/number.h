#pragma once

#include <charconv>
#include <string_view>

/// Whether `word` is a number, and nothing else; then it becomes the value of `number`.
template <class Value>
bool parse(std::string_view word, Value& number) {
    const char* const last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, number);
    return error == std::errc() && end == last;
}
