// Stands in for olad.cpp where libola is not found.

#include "CommandLine.h"
#include "olad.h"

void play_by_olad(const Kiv::Animation& /*show*/, unsigned int /*rate*/) {
    throw Failure("--play needs libola, which was missing when this was built (libola-dev)");
}
