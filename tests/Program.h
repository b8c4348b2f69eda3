#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Kiv {

/// What the programs' allocations do.
struct Memory {
    unsigned long failAt = 0;       ///< The allocation to fail, counted down; 0 for none.
    std::size_t largest = SIZE_MAX; ///< Larger ones fail too.
};
extern Memory memory;

enum class Check {
    Frames,  ///< Each call leaves what it leaves of the model, at every frame.
    Memory,  ///< So it does when each of its allocations has failed in turn and changed nothing.
    Extremes ///< Arguments are the most extreme there are; each call comes back.
};

/// Runs the program of public operations that `bytes` stand for. Returns the calls that led to what
/// went wrong, and what that was; "" if nothing did. Adds to `calls` how many ended well or
/// refused.
std::string run_program(const std::vector<unsigned char>& bytes, Check check, unsigned long& calls);

} // namespace Kiv
