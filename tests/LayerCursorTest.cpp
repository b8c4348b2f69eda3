#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The cursor primitives, on a layer of 4, 6 and 5 frames.
struct Primitives : Animation {
    KeyVector layer = keys("H1:4 T0,60:6 H3:5");
    KeyVector out = keys("N:1");
    unsigned int frame = 0;
    KeyVector::iterator it = layer.begin();

    /// The cursor, by its frame and the keys before it, and what it walks and writes.
    std::string state() const {
        return std::to_string(frame) + "@" + std::to_string(it - layer.begin()) + " " +
               show(layer) + " > " + show(out);
    }
    using Animation::_goToFrame;
    using Animation::_iterateOnLayer;
    using Animation::_removeKeys;
    using Animation::_removeKeysOnTheWay;
    using Animation::_subLayer;
    using Animation::_tailLayer;
};

TEST(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    const struct {
        unsigned int target, frame;
        long passed;
    } rows[] = {{0, 0, 0},   {3, 0, 0},   {4, 4, 1},   {9, 4, 1},
                {10, 10, 2}, {14, 10, 2}, {15, 15, 3}, {4294967295, 15, 3}};
    for (const auto& [target, frame, passed] : rows) {
        Primitives go;
        Primitives::_goToFrame(go.frame, go.it, target, go.layer);
        EXPECT_EQ(go.frame, frame) << target;
        EXPECT_EQ(go.it - go.layer.begin(), passed) << target;

        Primitives remove;
        const KeyVector kept(remove.layer.begin() + passed, remove.layer.end());
        Primitives::_removeKeysOnTheWay(remove.frame, remove.it, target, remove.layer);
        EXPECT_EQ(remove.frame, frame) << target;
        EXPECT_EQ(remove.it, remove.layer.begin());
        EXPECT_EQ(remove.layer, kept) << target;
    }
}

TEST(LayerCursorTest, WalksAppendTheKeysPassed) {
    Primitives p;
    Primitives::_subLayer(p.frame, p.it, 10, p.layer, p.out);
    EXPECT_EQ(p.state(), "10@2 H1:4 T0,60:6 H3:5 > N:1 H1:4 T0,60:6");
    Primitives::_tailLayer(p.frame, p.it, p.layer, p.out);
    EXPECT_EQ(p.state(), "15@3 H1:4 T0,60:6 H3:5 > N:1 H1:4 T0,60:6 H3:5");

    Primitives q;
    Primitives::_goToFrame(q.frame, q.it, 4, q.layer);
    Primitives::_iterateOnLayer(q.frame, q.it, 2, q.layer, true, nullptr);
    EXPECT_EQ(q.state(), "15@3 H1:4 T0,60:6 H3:5 > N:1");
}

TEST(LayerCursorTest, RemoveKeysCutsBothEnds) {
    const struct {
        unsigned int start, count;
        const char* state;
    } rows[] = {
        {2, 5, "4@1 H1:2 T30,60:3 H3:5"},
        {4, 6, "10@1 H1:4 H3:5"},
        {5, 3, "5@2 H1:4 T0,10:1 T40,60:2 H3:5"},
        {0, 15, "15@0 "},
        {0, 99, "15@0 "},
        {15, 3, "15@3 H1:4 T0,60:6 H3:5"},
        {6, 0, "6@2 H1:4 T0,20:2 T20,60:4 H3:5"},
        {4, 0, "4@1 H1:4 T0,60:6 H3:5"},
        {12, 4294967295, "15@3 H1:4 T0,60:6 H3:2"},
    };
    for (const auto& [start, count, state] : rows) {
        Primitives p;
        p.out.clear();
        Primitives::_removeKeys(p.frame, p.it, p.layer, start, count);
        EXPECT_EQ(p.state(), state + std::string(" > ")) << start << ", " << count;
    }
    Primitives p;
    Primitives::_goToFrame(p.frame, p.it, 4, p.layer);
    Primitives::_removeKeys(p.frame, p.it, p.layer, 6, 5);
    EXPECT_EQ(p.state(), "10@2 H1:4 T0,20:2 H3:4 > N:1");
}

} // namespace
