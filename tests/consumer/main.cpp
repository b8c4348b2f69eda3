#include <animationmodel/Rotation.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace Kiv;

// Uses the library as a program elsewhere does: one `defaultFps`, exceptions across its border.
int main() {
    Animation::defaultFps = 50;
    Animation lamp({{"lamp", {{{Transition, {0, 1}}, 10}, {{Hold, {1}}, 5}, {Wait, 5}}}}, 5, 0);
    lamp.insertInLayer("lamp", {{NoValue, 2}, {Wait, 1}}, 3);
    lamp.pushBackInLayer("lamp", Transition, make_vector(1, 0), 4);

    const std::unique_ptr<Animation> turning = std::make_unique<Rotation>(1, 0, 2, 3, 1);
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

    std::printf("%g fps, %u frames\n", static_cast<double>(turning->fps),
                turning->loop(2, true, true).durationInFrames());
    try {
        const Animation refused(-1.0F);
    } catch (const std::invalid_argument& error) {
        return brightest == 2 && pieces.size() == 2 && scenes["both"] == lamp && turning->fps == 50
                   ? 0
                   : 1;
    }
    return 1;
}
