#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Kiv {

/// What allocations do.
struct Memory {
    unsigned long failAt = 0;       ///< The allocation to fail, counted down; 0 for none.
    std::size_t largest = SIZE_MAX; ///< Larger ones fail too.
    unsigned long count = 0;        ///< How many there were.
    std::size_t inUse = 0;          ///< Bytes.
    std::size_t most = 0;           ///< The most bytes that were in use.
};
extern Memory memory;

enum class Check {
    Frames,  ///< Each call leaves what it leaves of the model, at every frame.
    Memory,  ///< So it does when each of its allocations has failed in turn and changed nothing.
    Extremes ///< Arguments are the most extreme there are; each call comes back.
};

/// Runs the program of calls on two animations that `bytes` stand for. Returns what went wrong, and
/// in which call; "" if nothing did. Adds to `calls` how many ended well or refused.
std::string run_program(const std::vector<unsigned char>& bytes, Check check, unsigned long& calls);

} // namespace Kiv
