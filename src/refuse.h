#pragma once

#include <locale>
#include <new>
#include <sstream>
#include <stdexcept>

namespace Kiv {

/// Throws std::invalid_argument with the pieces one after another as its text, numbers written in
/// the classic locale whatever the program's is; or std::bad_alloc, rather than half a text.
template <class... Pieces>
[[noreturn]] void refuse(const Pieces&... pieces) {
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit);
    text.imbue(std::locale::classic());
    try {
        (text << ... << pieces);
    } catch (const std::ios_base::failure&) { // libc++ says so when memory runs out
        throw std::bad_alloc();
    }
    throw std::invalid_argument(text.str());
}

} // namespace Kiv
