#pragma once

#include <locale>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Kiv {

/// The pieces one after another, numbers written in the classic locale whatever the program's is.
/// Throws std::bad_alloc rather than give half a text.
template <class... Pieces>
std::string text_of(const Pieces&... pieces) {
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit);
    text.imbue(std::locale::classic());
    try {
        (text << ... << pieces);
    } catch (const std::ios_base::failure&) { // libc++ says so when memory runs out
        throw std::bad_alloc();
    }
    return text.str();
}

/// Throws std::invalid_argument with the pieces one after another as its text.
template <class... Pieces>
[[noreturn]] void refuse(const Pieces&... pieces) {
    throw std::invalid_argument(text_of(pieces...));
}

} // namespace Kiv
