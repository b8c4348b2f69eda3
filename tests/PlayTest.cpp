#include "Program.h"
#include "Text.h"
#include "live.h"

#include <animationmodel/play.h>
#include <animationmodel/retime.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

using namespace Kiv;

namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();

/// With more layers than are sampled at a time.
Animation any_animation(std::mt19937& random) {
    Animation it;
    for (auto layer = random() % 40; layer > 0; --layer)
        for (auto key = random() % 9; key > 0; --key) {
            const std::string name = std::to_string(layer);
            const auto duration = static_cast<unsigned int>(random() % 30 + 1);
            const float from = static_cast<float>(random() % 1000) / 7;
            const float to = random() % 9 == 0 ? INFINITY : static_cast<float>(random() % 3);
            if (random() % 3 > 0)
                it.pushBackInLayer(name, Transition, {from, to}, duration);
            else if (random() % 2 > 0)
                it.pushBackInLayer(name, Hold, {from}, duration);
            else
                it.pushBackInLayer(name, AnimationKey(Wait, duration));
        }
    return it;
}

TEST(PlayTest, ValuesAreThoseThatCutsBeginWith) {
    std::mt19937 random;
    for (int round = 0; round < 30; ++round) {
        const Animation show = any_animation(random);
        const auto start = static_cast<unsigned int>(random() % 9);
        const unsigned int count = show.durationInFrames() + 2;
        const std::vector<float> values = sample(show.layers, start, count);
        ASSERT_EQ(values.size(), count * show.layers.size());
        std::vector<float> expected;
        Player player(show.layers);
        for (unsigned int frame = start; frame < start + count; ++frame) {
            const Animation piece = show.splitAt(frame, false, false).back();
            player.seek(static_cast<unsigned int>(random() % count));
            player.seek(frame);
            for (Track& track : player) {
                const KeyVector keys =
                    piece.layers.empty() ? KeyVector() : piece.layer(track.name());
                const bool has = !keys.empty() && !keys[0].command.args.empty();
                expected.push_back(has ? keys[0].command.args[0] : none);
                const auto value = track.value();
                EXPECT_EQ(value.has_value(), has) << "frame " << frame;
                const float played = value.value_or(none);
                EXPECT_EQ(std::memcmp(&played, &expected.back(), sizeof played), 0);
                const unsigned int change = std::min(start + count, track.nextChange());
                track.seek(std::max(frame, change - 1));
                EXPECT_EQ(track.value(), value) << "frame " << frame << " changes unannounced";
            }
        }
        EXPECT_EQ(std::memcmp(values.data(), expected.data(), values.size() * sizeof(float)), 0);
    }
}

TEST(PlayTest, SamplesUpToTheGreatestFrame) {
    const Animation it = animation("a: H5:4294967294 H6:9");
    const std::vector<float> values = sample(it.layers, 4294967293, 5);
    EXPECT_EQ(std::vector<float>(values.begin(), values.begin() + 3),
              (std::vector<float>{5, 6, 6}));
    EXPECT_TRUE(std::isnan(values[3]));
    EXPECT_TRUE(std::isnan(values[4]));
}

TEST(PlayTest, ValuesChangeOnLaterFramesOnly) {
    Animation it = animation("a: H1:1 H2:4294967290 H3:100");
    it.layers["a"][0].duration = 0;
    Player player(it.layers);
    EXPECT_EQ(player[0].value(), 2);
    EXPECT_EQ(player[0].nextChange(), 4294967290U);
    player.seek(4294967291);
    EXPECT_EQ(player[0].value(), 3);
    EXPECT_EQ(player[0].nextChange(), 4294967295U);
}

static_assert(!std::is_constructible_v<Track, const char*, const KeyVector&>);
static_assert(!std::is_constructible_v<Track, const std::string&, KeyVector>);
static_assert(!std::is_constructible_v<Player, const LayerMap>);

TEST(PlayTest, LayersThatHaveBecomeShorterEnd) {
    Animation it = animation("a: H1:30 H2:1 H3:1 H4:9");
    Player player(it.layers);
    player.seek(33);
    it.remove(5, 30);
    player.seek(34);
    EXPECT_TRUE(player[0].ended());
    EXPECT_EQ(player[0].value(), std::nullopt);
}

/// A playhead that is told to finish after so many frames plays a loop; values are frame numbers.
TEST(PlayTest, PlayheadsPlayLoops) {
    for (const unsigned int intro : {0U, 2U})
        for (const unsigned int body : {0U, 1U, 3U})
            for (const unsigned int outro : {0U, 1U})
                for (unsigned int told = 0; told < 9; ++told) {
                    Animation it;
                    it.introSize = intro;
                    it.outroSize = outro;
                    for (unsigned int frame = 0; frame < intro + body + outro; ++frame)
                        it.pushBackInLayer("a", Hold, {static_cast<float>(frame)}, 1);
                    std::vector<float> played;
                    Playhead head(it);
                    for (unsigned int time = 0; !head.ended(); head.next()) {
                        if (time++ == told)
                            head.finish();
                        played.push_back(static_cast<float>(head.frame()));
                    }
                    const bool inBody = body > 0 && told >= intro;
                    const Animation loop =
                        it.loop(inBody ? (told - intro) / body + 1 : 1, false, false);
                    EXPECT_EQ(played, sample(loop.layers, 0, loop.durationInFrames()))
                        << intro << ' ' << body << ' ' << outro << ", told after " << told;
                    head.next();
                    EXPECT_TRUE(head.ended());
                }
}

TEST(PlayTest, MemoryIsNeitherTakenNorFreedWhilePlaying) {
    auto scene = std::make_unique<Scene>(animation("a: T0,9:9; b: H1:4 W:5 | 2 1"));
    Handover handover;
    Playhead head(*scene->show);
    handover.offer(std::make_unique<Scene>(animation("a: H7:5")));
    const std::size_t inUse = memory.inUse;
    memory.count = 0;
    unsigned int taken = 0;
    for (int time = 0; time < 30; ++time, head.next()) {
        taken += handover.take(scene) ? 1 : 0;
        scene->player.seek(head.frame());
        EXPECT_EQ(value_under(scene->player, scene->player[0]), scene->player[0].value());
    }
    EXPECT_EQ(taken, 1U);
    EXPECT_EQ(memory.count, 0U);
    EXPECT_EQ(memory.inUse, inUse);
}

TEST(PlayTest, PlayheadsRefuseWhatCopiesRefuse) {
    for (const char* text : {"a: H1:4 | 5 0", "a: H1:4 | 0 5", "a: H1:4 | 3 2", "a: H1:2147483648",
                             "a: H1:4294967295 H1:6"}) {
        const Animation it = animation(text);
        const std::string refused = refusal([&] { Animation copy(it); });
        EXPECT_NE(refused, "");
        EXPECT_EQ(refusal([&] { Playhead head(it); }), refused);
    }
}

/// The frames on which keys, the intro and the outro begin and end, each moved by plain division.
TEST(RetimeTest, MovesBoundariesToTheNearestFrames) {
    const struct {
        float from, to;
        std::uint64_t numerator, denominator;
    } rows[] = {
        {25, 50, 2, 1},
        {50, 25, 1, 2},
        {30, 24, 4, 5},
        {24, 1000, 125, 3},
        {1000, 24, 3, 125},
        {0.5F, 7, 14, 1},
        {0x1p-149F, 0x1p-140F, 512, 1},
        {FLT_MAX, 1, 0, 1},
        {3, 16777215, 5592405, 1},
    };
    std::mt19937 random;
    for (const auto& row : rows) {
        Animation show = any_animation(random);
        show.introSize = static_cast<unsigned int>(random() % 30);
        show.outroSize = static_cast<unsigned int>(random() % 30);
        show.fps = row.from;
        const auto moved = [&row](std::uint64_t frame) {
            return (2 * frame * row.numerator + row.denominator) / (2 * row.denominator);
        };
        Animation expected;
        expected.fps = row.to;
        expected.introSize = static_cast<unsigned int>(moved(show.introSize));
        const unsigned int duration = show.durationInFrames();
        expected.outroSize = static_cast<unsigned int>(
            duration < show.outroSize ? moved(show.outroSize)
                                      : moved(duration) - moved(duration - show.outroSize));
        for (const auto& [name, keys] : show.layers) {
            std::uint64_t begin = 0;
            KeyVector& layer = expected.layers[name];
            for (AnimationKey key : keys) {
                const std::uint64_t end = begin + key.duration;
                key.duration = static_cast<unsigned int>(moved(end) - moved(begin));
                if (key.duration > 0)
                    layer.push_back(key);
                begin = end;
            }
        }
        change_frame_rate(show, row.to);
        EXPECT_EQ(show, expected) << row.from << " to " << row.to;
    }
}

template <class Length>
concept StretchesTo = requires(Animation& it, Length length) {
    stretch_to(it, length);
};
static_assert(StretchesTo<int> && !StretchesTo<double>, "0.5 would become 0");

TEST(RetimeTest, KeepsTheFrameRateWhereItStretches) {
    Animation it = animation("a: H1:1 H2:3 H3:4; b: W:4 | 1 2");
    it.fps = 10;
    stretch_to(it, 3);
    Animation expected = animation("a: H2:2 H3:1; b: W:2 | 0 1");
    expected.fps = 10;
    EXPECT_EQ(it, expected);
    it = animation("a: H1:2147483647 | 4294967295 0");
    stretch_to(it, 1073741824);
    EXPECT_EQ(it, animation("a: H1:1073741824 | 2147483649 0"));
}

} // namespace
