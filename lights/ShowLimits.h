#pragma once

#include <cstddef>
#include <cstdint>

/// How much a program reads and writes at most, so that a slip fills neither the memory nor the
/// disk.
struct ShowLimits {
    std::uint64_t bytes = 1'000'000'000; ///< Of a file that is read, or of those written together.
    std::size_t files = 1'000;           ///< Written together.
};
constexpr ShowLimits unlimited{UINT64_MAX, SIZE_MAX};
inline ShowLimits limits;
