#include "live.h"

#include <atomic>
#include <iostream>
#include <thread>

using namespace Kiv;

int main() {
    // The page goes on here.
    const AnimationKey on({Hold, {1}}, 2);
    const AnimationKey off({Hold, {0}}, 1);
    Animation show({{"bell", {off, off}}, {"lamp", {{{Transition, {0, 0.8F}}, 8}}}});
    Animation alert({{"lamp", {on, {Wait, 1}, on}}}); // the show goes on where it waits
    const unsigned int alarm = 2;                     // the frame on which it begins

    Player player(show.layers);
    Player over(alert.layers);
    for (unsigned int frame = 0; frame < show.durationInFrames(); ++frame) {
        player.seek(frame);
        over.seek(frame < alarm ? alert.durationInFrames()
                                : frame - alarm); // past its end: no value
        std::cout << frame << ": lamp " << *value_under(over, player[1]) << '\n';
    }

    Handover handover;
    std::atomic<bool> done = false;
    std::thread playing([&handover, &done, scene = std::make_unique<Scene>(show)]() mutable {
        for (unsigned int frame = 0; !done; ++frame) {
            if (handover.take(scene))
                frame = 0;
            scene->player.seek(frame);
            for (const Track& track : scene->player)
                done = done || track.value() == 7; // where a program sends the values
            std::this_thread::yield();             // and waits for the next frame
        }
    });
    for (const float brightness : {3.F, 5.F, 7.F}) { // edits a copy, and offers it
        show.pushBackInLayer("lamp", Hold, {brightness}, 5);
        handover.offer(std::make_unique<Scene>(show));
    }
    playing.join();
    // The page ends here.
    std::cout << "The last edit has played.\n";
}
