#include "Text.h"

#include <functional>
#include <gtest/gtest.h>

using namespace Kiv;

namespace {

struct Row {
    const char* call;
    std::function<void(Animation&)> edit;
    const char* expected;
};

#define CALL(...) #__VA_ARGS__, [](Animation & it) { it.__VA_ARGS__; }

void expectEdits(const std::string& before, std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        Animation it = animation(before);
        row.edit(it);
        EXPECT_EQ(show(it), row.expected) << row.call;

        Animation roomy = animation(before); // in place, where nothing needs to be allocated
        for (auto& [name, layer] : roomy.layers)
            layer.reserve(100);
        row.edit(roomy);
        EXPECT_EQ(show(roomy), row.expected) << row.call << " in place";
    }
}

const KeyVector x = keys("H9:3");

TEST(EditTest, InsertsInALayer) {
    expectEdits("a: H1:4 T0,60:6 H3:5 | 2 3",
                {
                    {CALL(insertInLayer("a", x, 0)), "a: H9:3 H1:4 T0,60:6 H3:5 | 2 3"},
                    {CALL(insertInLayer("a", x, 3)), "a: H1:3 H9:3 H1:1 T0,60:6 H3:5 | 2 3"},
                    {CALL(insertInLayer("a", x, 4)), "a: H1:4 H9:3 T0,60:6 H3:5 | 2 3"},
                    {CALL(insertInLayer("a", keys("N:1 N:2"), 6)),
                     "a: H1:4 T0,20:2 N:1 N:2 T20,60:4 H3:5 | 2 3"},
                    {CALL(insertInLayer("a", x[0], 15)), "a: H1:4 T0,60:6 H3:5 H9:3 | 2 3"},
                    {CALL(insertInLayer("a", x, 20)), "a: H1:4 T0,60:6 H3:5 W:5 H9:3 | 2 3"},
                    {CALL(insertInLayer("a", Transition, {7, 8}, 2, 4)),
                     "a: H1:4 T7,8:2 T0,60:6 H3:5 | 2 3"},
                    {CALL(insertInLayer("b", x, 7)), "a: H1:4 T0,60:6 H3:5; b: W:7 H9:3 | 2 3"},
                    {CALL(insertInLayer("b", x, 0)), "a: H1:4 T0,60:6 H3:5; b: H9:3 | 2 3"},
                    {CALL(insertInLayer("b", {}, 7)), "a: H1:4 T0,60:6 H3:5 | 2 3"},
                    {CALL(insertInLayer("a", {}, 6)), "a: H1:4 T0,60:6 H3:5 | 2 3"},
                });
}

TEST(EditTest, AppendsFillsAndRemovesInALayer) {
    const char* same = "a: H1:4 T0,60:6 H3:5 | 2 3";
    expectEdits(
        same,
        {
            {CALL(pushBackInLayer("a", keys("N:1 N:2"))), "a: H1:4 T0,60:6 H3:5 N:1 N:2 | 2 3"},
            {CALL(pushBackInLayer("b", Hold, {9}, 3)), "a: H1:4 T0,60:6 H3:5; b: H9:3 | 2 3"},
            {CALL(pushBackInLayer("b", {})), "a: H1:4 T0,60:6 H3:5; b:  | 2 3"},
            {CALL(fillInLayer("a", 15)), same},
            {CALL(fillInLayer("a", 16)), "a: H1:4 T0,60:6 H3:5 W:1 | 2 3"},
            {CALL(fillInLayer("b", 0)), "a: H1:4 T0,60:6 H3:5; b:  | 2 3"},
            {CALL(fillInLayer("b", 7)), "a: H1:4 T0,60:6 H3:5; b: W:7 | 2 3"},
            {CALL(removeInLayer("a", 2, 5)), "a: H1:2 T30,60:3 H3:5 | 2 3"},
            {CALL(removeInLayer("a", 5, 3)), "a: H1:4 T0,10:1 T40,60:2 H3:5 | 2 3"},
            {CALL(removeInLayer("a", 6, 0)), "a: H1:4 T0,20:2 T20,60:4 H3:5 | 2 3"},
            {CALL(removeInLayer("a", 10, 4294967295)), "a: H1:4 T0,60:6 | 2 3"},
            {CALL(removeInLayer("a", 15, 1)), same},
            {CALL(removeInLayer("b", 2, 5)), "a: H1:4 T0,60:6 H3:5; b:  | 2 3"},
        });
}

TEST(EditTest, OverridesALayer) {
    const char* same = "a: H1:4 T0,60:6 H3:5 | 2 3";
    expectEdits(
        same,
        {
            {CALL(overrideLayerWith("a", keys("H9:6"), 4)), "a: H1:4 H9:6 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", x, 4)), "a: H1:4 H9:3 T0,60:6 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", keys("H9:1 H8:1"), 2)),
             "a: H1:2 H9:1 H8:1 T0,60:6 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", x, 6)), "a: H1:4 T0,20:2 H9:3 T20,60:4 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", keys("W:4 H9:6"), 0)), "a: H1:4 H9:6 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", keys("H9:4 W:6 H8:5"), 0)), "a: H9:4 T0,60:6 H8:5 | 2 3"},
            // The key that follows the first run begins later than it did, at 5.
            {CALL(overrideLayerWith("a", keys("H9:1 W:2 H8:3"), 4)),
             "a: H1:4 H9:1 T0,20:2 H8:3 T20,60:4 H3:5 | 2 3"},
            {CALL(overrideLayerWith("a", keys("W:20"), 3)), "a: H1:4 T0,60:6 H3:5 W:5 | 2 3"},
            {CALL(overrideLayerWith("a", keys("H9:20"), 12)), "a: H1:4 T0,60:6 H3:2 H9:20 | 2 3"},
            {CALL(overrideLayerWith("a", keys("H9:2 W:1 H8:2"), 17)),
             "a: H1:4 T0,60:6 H3:5 W:2 H9:2 W:1 H8:2 | 2 3"},
            {CALL(overrideLayerWith("a", {}, 3)), same},
            {CALL(overrideLayerWith("b", {}, 3)), "a: H1:4 T0,60:6 H3:5; b: W:15 | 2 3"},
            {CALL(overrideLayerWith("b", x, 4)), "a: H1:4 T0,60:6 H3:5; b: W:4 H9:3 W:11 | 2 3"},
        });
    expectEdits("a: H1:4; b: N:20",
                {{CALL(overrideLayerWith("a", x, 1)), "a: H1:1 H9:3 W:16; b: N:20 | 0 0"}});
}

TEST(EditTest, InsertsAnAnimation) {
    static const auto y = animation("a: H9:5");
    expectEdits(
        "a: T0,100:10 | 2 3",
        {
            {CALL(insert(y, 0)), "a: H9:5 T0,100:10 | 7 3"},
            {CALL(insert(y, 1)), "a: T0,10:1 H9:5 T10,100:9 | 7 3"},
            {CALL(insert(y, 2)), "a: T0,20:2 H9:5 T20,100:8 | 2 3"},
            {CALL(insert(y, 7)), "a: T0,70:7 H9:5 T70,100:3 | 2 3"},
            {CALL(insert(y, 8)), "a: T0,80:8 H9:5 T80,100:2 | 2 8"},
            {CALL(insert(y, 10)), "a: T0,100:10 H9:5 | 2 8"},
            {CALL(insert(y, 12)), "a: T0,100:10 W:2 H9:5 | 2 8"},
            {CALL(insert(animation("b: H9:5"), 4)), "a: T0,40:4 W:5 T40,100:6; b: W:4 H9:5 | 2 3"},
            {CALL(insert(animation("a: N:2; b: H9:5"), 0)), "a: N:2 W:3 T0,100:10; b: H9:5 | 7 3"},
            {CALL(insert(animation("a: ; b: "), 4)), "a: T0,100:10 | 2 3"},
        });
    expectEdits("a: H1:4; b: N:10 | 0 20",
                {{CALL(insert(y, 6)), "a: H1:4 W:2 H9:5; b: N:6 W:5 N:4 | 0 25"}});
}

TEST(EditTest, AppendsAnAnimation) {
    static const auto y = animation("a: T0,50:5 | 1 2");
    expectEdits(
        "a: T0,100:10 | 2 3",
        {
            {CALL(pushBack(y, true, true)), "a: T0,100:10 T0,50:5 | 2 2"},
            {CALL(pushBack(y, false, true)), "a: T0,70:7 T0,50:5 | 2 2"},
            {CALL(pushBack(y, true, false)), "a: T0,100:10 T10,50:4 | 2 2"},
            {CALL(pushBack(y, false, false)), "a: T0,70:7 T10,50:4 | 2 2"},
            {CALL(pushBack(animation("a: H9:10 | 5 5"), true, false)), "a: T0,100:10 H9:5 | 2 5"},
            {CALL(pushBack(animation("b: H9:5"), false, true)),
             "a: T0,70:7 W:5; b: W:7 H9:5 | 2 0"},
            {CALL(pushBack(Animation(), false, true)), "a: T0,70:7 | 2 0"},
            {CALL(pushBack(Animation(), true, true)), "a: T0,100:10 | 2 0"},
        });
    expectEdits("", {{CALL(pushBack(y, false, true)), "a: T0,50:5 | 0 2"}});
    // Layers of unequal length; sizes that no longer fit.
    expectEdits(
        "a: H1:4; b: N:10; c:  | 12 3",
        {{CALL(pushBack(y, false, true)), "a: H1:4 W:3 T0,50:5; b: N:7 W:5; c: W:7 W:5 | 14 2"}});
    expectEdits("a: H1:4 | 3 9", {{CALL(pushBack(y, false, true)), "a: T0,50:5 | 0 2"}});
}

TEST(EditTest, RemovesFromAllLayers) {
    const char* same = "a: T0,100:10; b: N:4 | 2 3";
    expectEdits(same, {
                          {CALL(remove(0, 0)), same},
                          {CALL(remove(3, 0)), same},
                          {CALL(remove(10, 4)), same},
                          {CALL(remove(1, 3)), "a: T0,10:1 T40,100:6; b: N:1 | 1 3"},
                          {CALL(remove(0, 1)), "a: T10,100:9; b: N:3 | 1 3"},
                          {CALL(remove(1, 1)), "a: T0,10:1 T20,100:8; b: N:1 N:2 | 1 3"},
                          {CALL(remove(2, 5)), "a: T0,20:2 T70,100:3; b: N:2 | 2 3"},
                          {CALL(remove(5, 3)), "a: T0,50:5 T80,100:2; b: N:4 | 2 2"},
                          {CALL(remove(7, 1)), "a: T0,70:7 T80,100:2; b: N:4 | 2 2"},
                          {CALL(remove(8, 1)), "a: T0,80:8 T90,100:1; b: N:4 | 2 2"},
                          {CALL(remove(8, 10)), "a: T0,80:8; b: N:4 | 2 1"},
                          {CALL(remove(5, 4294967295)), "a: T0,50:5; b: N:4 | 2 0"},
                          {CALL(remove(1, 10)), "a: T0,10:1; b: N:1 | 1 0"},
                          {CALL(remove(0, 10)), "a: ; b:  | 0 0"},
                      });
}

TEST(EditTest, OverridesAllLayers) {
    // b is filled up to the 12 frames that overriding a has led to.
    expectEdits(
        "a: H1:4 T0,60:6; b: N:2; c: N:1 | 2 3",
        {
            {CALL(overrideLayersWith(animation("a: H9:2; b: H8:2; d: "), 4)),
             "a: H1:4 H9:2 T0,60:6; b: N:2 W:2 H8:2 W:8; c: N:1; d: W:14 | 2 3"},
            {CALL(overrideLayersWith(Animation(), 4)), "a: H1:4 T0,60:6; b: N:2; c: N:1 | 2 3"},
        });
}

TEST(EditTest, ArgumentsMayBePartsOfTheAnimation) {
    expectEdits(
        "a: H1:4 H2:6 | 2 3",
        {
            {CALL(insertInLayer("a", it.layers["a"], 3)), "a: H1:3 H1:4 H2:6 H1:1 H2:6 | 2 3"},
            {CALL(insertInLayer("a", it.layers["a"][1], 3)), "a: H1:3 H2:6 H1:1 H2:6 | 2 3"},
            {CALL(insertInLayer(it.layers.begin()->first, it.layers["a"], 12)),
             "a: H1:4 H2:6 W:2 H1:4 H2:6 | 2 3"},
            {CALL(pushBackInLayer("a", it.layers["a"])), "a: H1:4 H2:6 H1:4 H2:6 | 2 3"},
            {CALL(pushBackInLayer("a", it.layers["a"][0])), "a: H1:4 H2:6 H1:4 | 2 3"},
            {CALL(overrideLayerWith("a", it.layers["a"], 4)), "a: H1:4 H1:4 H2:6 | 2 3"},
            {CALL(insert(it, 3)), "a: H1:3 H1:4 H2:6 H1:1 H2:6 | 2 3"},
            {CALL(pushBack(it, false, false)), "a: H1:4 H2:3 H1:2 H2:6 | 2 3"},
            {CALL(overrideLayersWith(it, 4)), "a: H1:4 H1:4 H2:6 | 2 3"},
            {CALL(introBodyOutroLayers(it.layers, it.layers, it.layers)),
             "a: H1:4 H2:6 H1:2 H1:2 H2:3 H2:3 | 2 3"},
        });
}

TEST(EditTest, RefusedCallsChangeNothing) {
    const auto y = [] { return animation("a: H9:5 | 3 3"); }; // moved in, so not checked before
    const std::string overlap = "Intro (which size = 3) and outro (which size = 3) should not "
                                "overlap (animation duration = 5)";
    Animation it = animation("a: H1:4");
    EXPECT_EQ(refusal([&] { it.insert(y(), 0); }), overlap);
    EXPECT_EQ(refusal([&] { it.pushBack(y(), true, true); }), overlap);
    EXPECT_NE(refusal([&] { it.pushBackInLayer("b", Hold, {}, 3); }), "");
    EXPECT_NE(refusal([&] { it.insertInLayer("b", Hold, {1}, 0, 3); }), "");
    EXPECT_EQ(show(it), "a: H1:4 | 0 0");
}

} // namespace
