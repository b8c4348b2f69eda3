#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

/// How much a program reads and writes at most, so that a slip fills neither the memory nor the
/// disk.
struct ShowLimits {
    std::uint64_t bytes = 1'000'000'000; ///< Of a file that is read, or of those written together.
    std::size_t files = 1'000;           ///< Written together.
};
constexpr ShowLimits unlimited{UINT64_MAX, SIZE_MAX};
inline ShowLimits limits;

/// The bytes of a file; 0 where they are not known beforehand, as of a pipe.
inline double size_of(const std::string& name) {
    std::error_code unknown;
    const auto size = static_cast<double>(std::filesystem::file_size(name, unknown));
    return unknown ? 0 : size;
}

/// What is said of more bytes than `limits` allow: only without them the program "reads" or
/// "writes" so many.
inline std::string too_many_bytes(const std::string& does) {
    return "more than " + std::to_string(limits.bytes / 1'000'000'000) + " GB; --no-limit " + does +
           " it all the same";
}
