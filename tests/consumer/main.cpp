// Uses the library as a program elsewhere does: through its border, in the forms that a client
// would write.

#include <animationmodel/Rotation.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace Kiv;

namespace {

int failures = 0;

void expect(bool fact, const char* text) {
    if (!fact) {
        std::cerr << "not so: " << text << '\n';
        ++failures;
    }
}
#define EXPECT(...) expect((__VA_ARGS__), #__VA_ARGS__)

constexpr AnimationKeyArgs rise{0, 1};
static_assert(rise.back() == 1 && rise != AnimationKeyArgs{});

void useArgumentsAsAVector() {
    AnimationKeyArgs args{};
    args.push_back(1) += 2;
    args.insert(args.begin(), 7);
    EXPECT(args == make_vector(7, 3));
    EXPECT(args.try_push_back(4) == nullptr);
    args.erase(args.begin());
    args.emplace(args.end(), 5.0F);
    EXPECT(args == AnimationKeyArgs{3, 5});
    EXPECT(rise < args && args >= rise);

    const std::vector<float> vector = args;
    args.clear();
    args.unchecked_push_back(6);
    args.insert(args.end(), vector.begin(), vector.begin() + 1);
    EXPECT(args == make_vector(6, 3));
    EXPECT(erase(args, 6) == 1);
    EXPECT(erase_if(args, [](float value) { return value < 3; }) == 0);
    args.insert(args.begin(), {4});
    EXPECT(args == make_vector(4, 3));
    args = {};
    args.insert(args.begin(), 2, 9.0F);
    AnimationKeyArgs other = make_vector(8);
    swap(args, other);
    EXPECT(other == std::vector<float>(2, 9));
    EXPECT(args != vector);

    const AnimationKeyArgs ordered[] = {{}, {-1}, {-1, 5}, {0}, {0, -2}, {0, 1}, {3}};
    for (const auto& a : ordered)
        for (const auto& b : ordered) {
            EXPECT((a < b) == (&a < &b));
            EXPECT((a > b) == (&a > &b));
            EXPECT((a <= b) == (&a <= &b));
            EXPECT((a >= b) == (&a >= &b));
            EXPECT((a != b) == (&a != &b));
        }
}

void useBraces() {
    const AnimationKey wait(Wait, 4);
    EXPECT(Animation::durationInFramesOf({wait, {{Hold, {1}}, 3}}) == 7);
    EXPECT(Animation::durationInFramesOf({}) == 0);
    EXPECT(Animation::durationInFramesOf({{"lamp", {wait, wait}}}) == 8);
    EXPECT(Animation({}).layers.empty());
    EXPECT(Animation{{}}.layers.empty());
    EXPECT(Animation({{"lamp", {}}}).layers.size() == 1);
    EXPECT(Animation{{{"lamp", {}}, {"motor", {wait}}}}.layers.at("lamp").size() == 1);

    Animation lamp({{"lamp", {{{Transition, {0, 1}}, 10}, wait}}}, 5, 0);
    lamp.insertInLayer("lamp", {{NoValue, 2}, {Wait, 1}}, 3);
    lamp.pushBackInLayer("lamp", Transition, {1, 0}, 4);
    lamp.overrideLayerWith("lamp", wait, 20);
    lamp.overrideLayerWith("lamp", Hold, {2}, 3, 14);
    lamp.overrideLayerWith("lamp", {wait, {NoValue, 1}}, 0);
    EXPECT(lamp.durationInFrames() == 21);
    EXPECT(lamp.layer("lamp").size() == 8);
    EXPECT(lamp.splitAt({4, 8}, true, false).size() == 3);
}

void useAnimationsAsValues() {
    Animation lamp({{"lamp", {{{Hold, {1}}, 5}}}});
    Animation none(30);
    swap(lamp, none);
    EXPECT(lamp.fps == 30);
    std::swap(lamp, none);
    EXPECT(none.layers.empty());
    for (AnimationKey& key : lamp.layers["lamp"])
        for (float& value : key.command.args)
            value *= 2;
    EXPECT(lamp.layer("lamp").back().command.args.at(0) == 2);

    std::vector<Rotation> rotations{{1, 0, 2, 3, 1}, {0, 1, 2, 3, 1}};
    swap(rotations[0], rotations[1]);
    rotations.erase(rotations.begin());
    const std::unique_ptr<Animation> turning = std::make_unique<Rotation>(rotations[0]);
    EXPECT(rotations[0].pulseValue == 1);
    EXPECT(turning->layer("FaceLed0") == rotations[0].layer("FaceLed0"));
    std::cout << *turning << '\n' << lamp.layer("lamp") << '\n';
}

/// There is one `defaultFps`, and an exception crosses the library's border.
void crossTheBorder() {
    Animation::defaultFps = 50;
    EXPECT(Animation().fps == 50);
    bool refused = false;
    try {
        const Animation none(-1.0F);
    } catch (const std::invalid_argument&) {
        refused = true;
    }
    EXPECT(refused);
}

} // namespace

int main() {
    useArgumentsAsAVector();
    useBraces();
    useAnimationsAsValues();
    crossTheBorder();
    return failures;
}
