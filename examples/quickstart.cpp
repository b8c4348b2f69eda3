#include <animationmodel/Animation.h>

#include <iostream>

int main() {
    using namespace Kiv;

    Animation lamp;                                       // 25 frames per second
    lamp.pushBackInLayer("lamp", Transition, {0, 1}, 10); // fades in over 10 frames,
    lamp.pushBackInLayer("lamp", Hold, {1}, 20);          // stays,
    lamp.pushBackInLayer("lamp", Transition, {1, 0}, 10); // fades out
    lamp.introSize = 10;
    lamp.outroSize = 10;

    lamp.insertInLayer("lamp", Hold, {0.5F}, 5, 16);     // dims at frame 16: the Hold is cut
    const Animation looped = lamp.loop(3, false, false); // the body three times

    std::cout << looped.durationInFrames() << " frames, " << looped.durationInSeconds() << " s\n";
    for (const AnimationKey& key : looped.layers.at("lamp")) {
        std::cout << key.duration << " frames:";
        for (const float value : key.command.args)
            std::cout << ' ' << value;
        std::cout << '\n';
    }
}
