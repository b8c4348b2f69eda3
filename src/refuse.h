#pragma once

#include <locale>
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
    (text << ... << pieces);
    throw std::invalid_argument(text.str());
}

} // namespace Kiv
