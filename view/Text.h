#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Texts that come from users and files, as they are shown.

/// How many bytes at the start of `text`, which is not empty, are one character in UTF-8; 0 if they
/// are none that XML may hold.
std::size_t character(std::string_view text);

/// The text on one line: what a terminal might obey, and what is not UTF-8, is escaped as "\x1b".
/// Of a text of more than 1,000 bytes, the start and the end.
std::string printable(std::string_view text);

/// A word in quotes, printable; of one of more than 60 bytes, the start.
std::string in_quotes(std::string_view word);
