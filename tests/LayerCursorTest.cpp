#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The cursor primitives, on a layer of 4, 6 and 5 frames.
struct Primitives : Animation {
    KeyVector layer = keys("H1:4 T0,60:6 H3:5"), out = keys("N:1");
    unsigned int frame = 0;
    KeyVector::iterator it = layer.begin();

    /// The cursor, by its frame and the keys before it, and the layer.
    std::string state() const {
        return std::to_string(frame) + "@" + std::to_string(it - layer.begin()) + " " + show(layer);
    }
    void go(unsigned int target) { _goToFrame(frame, it, target, layer); }
    void copy(unsigned int target) { _subLayer(frame, it, target, layer, out); }
    void copyTail() { _tailLayer(frame, it, layer, out); }
    void goToEnd() { _iterateOnLayer(frame, it, 0, layer, true, nullptr); }
    void removeOnTheWay(unsigned int target) { _removeKeysOnTheWay(frame, it, target, layer); }
    void remove(unsigned int start, unsigned int count) {
        _removeKeys(frame, it, layer, start, count);
    }
};

TEST(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    const struct {
        unsigned int target;
        const char *cursor, *copied, *kept;
    } rows[] = {{3, "0@0", "N:1", "0@0 H1:4 T0,60:6 H3:5"},
                {4, "4@1", "N:1 H1:4", "4@0 T0,60:6 H3:5"},
                {14, "10@2", "N:1 H1:4 T0,60:6", "10@0 H3:5"},
                {15, "15@3", "N:1 H1:4 T0,60:6 H3:5", "15@0 "}};
    for (const auto& [target, cursor, copied, kept] : rows) {
        Primitives going, copying, removing;
        going.go(target);
        copying.copy(target);
        EXPECT_EQ(going.state(), cursor + std::string(" H1:4 T0,60:6 H3:5"));
        EXPECT_EQ(copying.state(), going.state());
        EXPECT_EQ(show(copying.out), copied);
        removing.removeOnTheWay(target);
        EXPECT_EQ(removing.state(), kept);
        going.goToEnd();
        copying.copyTail();
        EXPECT_EQ(going.state(), "15@3 H1:4 T0,60:6 H3:5");
        EXPECT_EQ(copying.state(), going.state());
        EXPECT_EQ(show(copying.out), "N:1 H1:4 T0,60:6 H3:5");
    }
}

TEST(LayerCursorTest, RemoveKeysCutsBothEnds) {
    const struct {
        unsigned int start, count;
        const char* state;
    } rows[] = {{2, 5, "4@1 H1:2 T30,60:3 H3:5"},
                {5, 3, "5@2 H1:4 T0,10:1 T40,60:2 H3:5"},
                {4, 6, "10@1 H1:4 H3:5"},
                {6, 0, "6@2 H1:4 T0,20:2 T20,60:4 H3:5"},
                {0, 99, "15@0 "},
                {12, 4294967295, "15@3 H1:4 T0,60:6 H3:2"}};
    for (const auto& [start, count, state] : rows) {
        Primitives cursor;
        cursor.remove(start, count);
        EXPECT_EQ(cursor.state(), state);
    }
    Primitives cursor;
    cursor.go(4);
    cursor.remove(6, 5);
    EXPECT_EQ(cursor.state(), "10@2 H1:4 T0,20:2 H3:4");
}

} // namespace
