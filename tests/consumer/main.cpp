#include <animationmodel/Rotation.h>

#include <cstdio>
#include <stdexcept>

// Uses the library as a program elsewhere does: one `defaultFps`, exceptions across its border.
int main() {
    Kiv::Animation::defaultFps = 50;
    const Kiv::Rotation rotation(1, 0, 2, 3, 1);
    std::printf("%g fps, %u frames\n", static_cast<double>(rotation.fps),
                rotation.loop(2, true, true).durationInFrames());
    try {
        const Kiv::Animation refused(-1.0F);
    } catch (const std::invalid_argument& error) {
        std::printf("%s\n", error.what());
        return rotation.fps == 50 ? 0 : 1;
    }
    return 1;
}
