#include <animationmodel/Rotation.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace Kiv;

/// Does the same to arguments and to a vector; in the end both are alike.
bool argumentsAreAVector() {
    AnimationKeyArgs args{};
    std::vector<float> vector;
    bool alike = true;
    const auto both = [&](const auto& call) {
        call(vector), call(args);
        alike = alike && args == vector && vector == args && !(args != vector);
    };
    both([](auto& it) { it.push_back(1), it.insert(it.begin(), 2); });
    both([](auto& it) { std::reverse(it.rbegin(), it.rend()), it.pop_back(), it.resize(2); });
    both([](auto& it) { it.at(1) = it.front(), it.back() += 3, it.erase(it.cbegin()); });
    both([](auto& it) { it = {6, 7}, it.erase(it.begin() + 1, it.end()); });
    both([](auto& it) { it.assign(2, 5), it.resize(1, 9), it.resize(2, 9); });
    both([](auto& it) { it.clear(); });
    both([](auto& it) { it = make_vector(3, 4), it.shrink_to_fit(); });
    AnimationKeyArgs other = make_vector(1);
    other.swap(args);
    return alike && args == AnimationKeyArgs{1} && std::vector<float>(other) == vector;
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

    float brightest = 0;
    for (auto& [name, layer] : scenes["lamp"].layers)
        for (AnimationKey& key : layer)
            for (float& value : key.command.args)
                brightest = std::max(brightest, value *= 2);
    std::vector<Animation> pieces = lamp.splitAt({4, 8}, true, false);
    pieces.erase(pieces.begin());

    try {
        const Animation refused(-1.0F);
    } catch (const std::invalid_argument& error) {
        return argumentsAreAVector() && brightest == 2 && pieces.size() == 2 &&
                       scenes["both"] == lamp && turning->fps == 50
                   ? 0
                   : 1;
    }
    return 1;
}
