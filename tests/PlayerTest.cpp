#include "Player.h"
#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

using Values = std::vector<std::optional<float>>;

Values values(const Player& player) {
    Values result;
    for (const Track& track : player)
        result.push_back(track.value());
    return result;
}

/// What each layer begins with from `frame` on, when the whole animation is cut there.
Values cut(const Animation& animation, unsigned int frame) {
    Values result;
    const Animation piece = animation.splitAt(frame, false, false).back();
    for (const auto& [name, layer] : piece.layers) {
        const bool has = !layer.empty() && !layer.front().command.args.empty();
        result.push_back(has ? std::optional(layer.front().command.args[0]) : std::nullopt);
    }
    return result;
}

TEST(PlayerTest, PlaysWhatACutWouldBeginWith) {
    const Animation show = animation("a: T0.1,0.7:7 H3:2 N:3 E9:1 T1,0:4; b: W:4 T1,1:2 H0:1; "
                                     "c: T0,255:11 T255,0.3:9; d: ");
    const unsigned int duration = show.durationInFrames();
    Player onwards(show.layers);
    for (unsigned int frame = 0; frame < duration; onwards.seek(++frame)) {
        EXPECT_EQ(values(onwards), cut(show, frame)) << frame;
        for (unsigned int from = 0; from <= duration + 1; ++from) {
            Player jumping(show.layers);
            jumping.seek(from);
            jumping.seek(frame);
            EXPECT_EQ(values(jumping), values(onwards)) << from << " to " << frame;
        }
        for (Track track : onwards) {
            const auto value = track.value();
            track.seek(std::min(duration, track.nextChange()) - 1);
            EXPECT_EQ(track.value(), value) << frame << " changes unannounced";
        }
    }
    EXPECT_EQ(values(onwards), Values(4)) << "past the end";
}

} // namespace
