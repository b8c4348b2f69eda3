#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The cursor primitives, on a layer of 4, 6 and 5 frames.
struct LayerCursorTest : testing::Test, Animation {
    const KeyVector all = keys("H1:4 T0,60:6 H3:5");
    KeyVector layer, out;
    KeyVector::iterator it;
    unsigned int frame = 0;

    void restart() { layer = all, it = layer.begin(), frame = 0; }
};

TEST_F(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    for (unsigned int target = 0; target < 20; ++target) {
        out.clear();
        restart();
        _subLayer(frame, it, target, layer, out);
        EXPECT_EQ(out, KeyVector(layer.begin(), it));
        EXPECT_EQ(frame, durationInFramesOf(out));
        EXPECT_TRUE(frame <= target && (it == layer.end() || frame + it->duration > target));
        const unsigned int walked = frame;
        _tailLayer(frame, it, layer, out);
        EXPECT_TRUE(out == all && frame == 15 && it == layer.end());
        restart();
        _goToFrame(frame, it, target, layer);
        EXPECT_TRUE(frame == walked && durationInFramesOf(KeyVector(layer.begin(), it)) == walked);
        _iterateOnLayer(frame, it, 0, layer, true, nullptr);
        EXPECT_TRUE(frame == 15 && it == layer.end());
        restart();
        _removeKeysOnTheWay(frame, it, target, layer);
        EXPECT_TRUE(frame == walked && durationInFramesOf(layer) == 15 - frame);
    }
}

/// What is removed is what the public operation removes, from a cursor on any key before.
TEST_F(LayerCursorTest, RemoveKeysCutsBothEnds) {
    for (unsigned int start = 0; start < 18; ++start)
        for (const unsigned int count : {0U, 1U, 2U, 3U, 5U, 6U, 9U, 20U, 4294967295U})
            for (const unsigned int from : {0U, start}) {
                layers["a"] = all;
                removeInLayer("a", start, count);
                restart();
                _goToFrame(frame, it, count > 20 ? 15 : start + count, layer);
                const unsigned int kept = std::min(start, 15U), end = std::max(frame, kept);
                restart();
                _goToFrame(frame, it, from, layer);
                _removeKeys(frame, it, layer, start, count);
                EXPECT_TRUE(layer == layers["a"] && frame == end) << start << ' ' << count;
                EXPECT_EQ(durationInFramesOf(KeyVector(layer.begin(), it)), kept);
            }
}

} // namespace
