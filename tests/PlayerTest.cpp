#include "Player.h"
#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

/// From wherever a player comes, on a frame it plays what each layer begins with if the whole
/// animation is cut there.
TEST(PlayerTest, PlaysWhatACutWouldBeginWith) {
    const Animation show = animation("a: T0.1,0.7:7 H3:2 N:3 E9:1 T1,0:4; b: W:4 T1,1:2 H0:1; "
                                     "c: T0,255:11 T255,0.3:9; d: ; e: T1,inf:3");
    const unsigned int duration = show.durationInFrames();
    for (unsigned int frame = 0; frame < duration + 2; ++frame)
        for (unsigned int from = 0; from < duration + 2; ++from) {
            const Animation piece = show.splitAt(frame, false, false).back();
            Player player(show.layers);
            player.seek(from);
            player.seek(frame);
            for (Track track : player) {
                const KeyVector keys = piece.layer(track.name());
                const bool has = !keys.empty() && !keys[0].command.args.empty();
                const auto expected = has ? std::optional(keys[0].command.args[0]) : std::nullopt;
                EXPECT_EQ(track.value(), expected) << frame << " from " << from;
                track.seek(std::max(frame, std::min(duration, track.nextChange()) - 1));
                EXPECT_EQ(track.value(), expected) << frame << " changes unannounced";
            }
        }
}
