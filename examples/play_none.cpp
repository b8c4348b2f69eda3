// Stands in for play_ola.cpp where libola is not found.

#include "Program.h"
#include "play.h"

void play(const Kiv::Animation& /*show*/, unsigned int /*rate*/) {
    throw Failure("--play needs libola, which was missing when this was built (libola-dev)");
}
