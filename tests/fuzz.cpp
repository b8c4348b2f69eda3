#include "Program.h"

#include <cstdio>
#include <cstdlib>

/// Runs the program that the bytes stand for; whatever differs from the model is a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    unsigned long calls = 0;
    const std::string fault = Kiv::run_program({data, data + size}, Kiv::Check::Frames, calls);
    if (!fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
