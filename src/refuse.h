#pragma once

#include <locale>
#include <sstream>
#include <stdexcept>

namespace Kiv {

/// Throws std::invalid_argument with the pieces one after another as its text, numbers written in
/// the classic locale whatever the program's is.
template <class... Pieces>
[[noreturn]] void refuse(const Pieces&... pieces) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << pieces);
    throw std::invalid_argument(text.str());
}

} // namespace Kiv
