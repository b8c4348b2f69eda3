#include <animationmodel/Rotation.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace Kiv;

/// Arguments are used as a vector of floats is.
bool argumentsAreAVector(AnimationKeyArgs args) {
    args.push_back(1), args.insert(args.begin(), 2), args.at(1) += args.front() - *args.rbegin();
    const std::vector<float> vector = args;
    AnimationKeyArgs other = {6, 7}, empty{};
    other.erase(other.begin() + 1, other.end()), other.resize(2, other.back()), other.swap(args);
    bool alike = other == vector && vector != args && args == make_vector(6, 6);
    args = make_vector(1), other.assign(1, *args.cbegin()), empty.clear(), args.shrink_to_fit();
    return alike && args == other && empty.empty() && (args = {}) == std::vector<float>();
}

// Uses the library as a program elsewhere does: one `defaultFps`, exceptions across its border.
int main() {
    Animation::defaultFps = 50;
    Animation lamp({{"lamp", {{{Transition, {0, 1}}, 10}, {{Hold, {1}}, 5}, {Wait, 5}}}}, 5, 0);
    lamp.insertInLayer("lamp", {{NoValue, 2}, {Wait, 1}}, 3);
    lamp.pushBackInLayer("lamp", Transition, make_vector(1, 0), 4);

    std::vector<Rotation> rotations{{1, 0, 2, 3, 1}, {0, 1, 2, 3, 1}};
    std::swap(rotations[0], rotations[1]);
    rotations.erase(rotations.begin());
    std::cout << rotations[0] << lamp.layer("lamp") << '\n';
    const std::unique_ptr<Animation> turning = std::make_unique<Rotation>(rotations[0]);
    std::map<std::string, Animation> scenes{{"lamp", lamp}, {"turning", *turning}};
    scenes["both"] = lamp;
    scenes["both"].overrideLayersWith(*turning, 2);
    std::swap(scenes["both"], scenes["lamp"]);

    for (AnimationKey& key : scenes["lamp"].layers["lamp"])
        for (float& value : key.command.args)
            value *= 2;
    std::vector<Animation> pieces = lamp.splitAt({4, 8}, true, false);
    pieces.erase(pieces.begin());
    const bool good = argumentsAreAVector({}) && pieces.size() == 2 && scenes["both"] == lamp &&
                      scenes["lamp"].layer("lamp").back().command.args.at(0) == 2;
    try {
        const Animation refused(-1.0F);
    } catch (const std::invalid_argument& error) {
        return good && turning->fps == 50 ? 0 : 1;
    }
    return 1;
}
