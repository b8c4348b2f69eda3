// The program of docs/guide.md; writes its pictures into the folder that it is given.

#include "Fit.h"
#include "Fseq.h"
#include "Picture.h"

#include <animationmodel/Rotation.h>
#include <animationmodel/play.h>

#include <algorithm>
#include <fstream>
#include <iostream>

using namespace Kiv;

namespace {

std::string folder;

void picture(const std::string& name, const std::string& title, const Animation& animation) {
    std::ofstream file(folder + "/" + name);
    write_svg(file, title, animation);
}

/// What edits make of a layer, each in a layer of its own.
Animation edits() {
    const Animation fresh({{"lamp", {{{Transition, {0, 1}}, 10}, {{Hold, {1}}, 10}}}}, 10, 0);
    const AnimationKey dim({Hold, {0.5F}}, 4);
    LayerMap results;
    Animation lamp(fresh);
    const auto keep = [&](const std::string& name) {
        results[name] = lamp.layer("lamp");
        lamp = fresh;
    };
    keep("0 lamp");
    lamp.remove(4, 10);
    keep("1 remove");
    lamp.insertInLayer("lamp", dim, 6);
    keep("2 insert");
    lamp.replaceInLayer("lamp", 8, 4, dim);
    keep("3 replace");
    lamp.overrideLayerWith("lamp", {dim, {Wait, 6}, dim}, 6);
    keep("4 override");
    lamp = lamp.loop(2, false, false);
    keep("5 loop");
    Animation all;
    all.layers = results; // not filled up to the longest one
    return all;
}

/// What a sequencer renders: for 160 steps of 25 milliseconds a byte for each of four lights, which
/// fade in one after another and out together.
void render(const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    const char header[] =
        "PSEQ\x20\0\0\x02\x20\0\x04\0\0\0\xa0\0\0\0\x19\0\0\0\0\0\0\0\0\0\0\0\0\0";
    file.write(header, sizeof header - 1);
    for (int step = 0; step < 160; ++step)
        for (int light = 0; light < 4; ++light) {
            const int fadedIn = (step - 20 - 20 * light) * 15;
            const int fadedOut = (150 - step) * 15;
            file.put(static_cast<char>(std::clamp(std::min(fadedIn, fadedOut), 0, 255)));
        }
}

} // namespace

int main(int argc, char** argv) {
    folder = argc > 1 ? argv[1] : ".";
    picture("edits.svg", "A layer, and what edits make of it", edits());
    render(folder + "/rendered.fseq");
    // The guide begins here.
    const AnimationKey dim({Hold, {0.5F}}, 4);
    Animation idea;
    for (const auto* name : {"0 before", "1 replace", "2 insert", "3 remove", "4 append"}) {
        idea.pushBackInLayer(name, Transition, {0, 1}, 10);
        idea.pushBackInLayer(name, Hold, {1}, 10);
    }
    idea.replaceInLayer("1 replace", 6, 8, dim); // eight frames by four
    idea.replaceInLayer("2 insert", 6, 0, dim);  // none by four: insertInLayer(name, dim, 6)
    idea.replaceInLayer("3 remove", 6, 8, {});   // eight by none: removeInLayer(name, 6, 8)
    idea.replaceInLayer("4 append", 20, 0, dim); // at the end: pushBackInLayer(name, dim)
    picture("replace.svg", "Replacing a range of frames", idea);

    Animation light;
    light.pushBackInLayer("status", Transition, {0, 0.2F}, 20); // intro: fades in
    light.pushBackInLayer("status", Transition, {0.2F, 1}, 20); // body: breathes in
    light.pushBackInLayer("status", Transition, {1, 0.2F}, 20); //       and out
    light.pushBackInLayer("status", Transition, {0.2F, 0}, 20); // outro: fades out
    light.introSize = 20;
    light.outroSize = 20;
    picture("guide-1.svg", "One breath", light);

    light = light.loop(5, /*repeatIntro=*/false, /*repeatOutro=*/false);
    picture("guide-2.svg", "Five breaths", light);

    light.setFPSToFitDurationInSeconds(8);
    picture("guide-3.svg", "Eight seconds", light);

    const auto rate = static_cast<unsigned int>(light.fps);
    KeyVector alert;
    while (Animation::durationInFramesOf(alert) < 2 * rate) {
        alert.push_back({{Hold, {1}}, 5});
        alert.push_back({{Hold, {0}}, 5});
    }
    light.overrideLayerWith("status", alert, 80);
    picture("guide-4.svg", "An alert for two seconds", light);

    Animation late = light; // and once more, where the alert ends inside a key
    for (const auto& [name, keys] : LayerMap{{"status", alert}})
        late.replaceInLayer(name, 143, Animation::durationInFramesOf(keys), keys);

    LayerMap seconds;
    for (const Animation& piece : light.splitEach(rate, /*keepIntro=*/true, /*keepOutro=*/true))
        if (!piece.empty())
            seconds["second " + std::to_string(seconds.size())] = piece.layer("status");
    Animation pieces = seconds;
    pieces.fps = light.fps;
    picture("guide-5.svg", "One-second pieces", pieces);

    const Rotation ring(/*pulseValue=*/1, /*restValue=*/0.1F,
                        /*riseDuration=*/4, /*fallDuration=*/8, /*stepDuration=*/3);
    picture("guide-6.svg", "A pulse around a ring", ring);

    LayerMap intro;
    LayerMap body;
    LayerMap outro;
    ring.introBodyOutroLayers(intro, body, outro);
    const Animation revolution(body);
    picture("guide-7.svg", "The body of the ring", revolution);

    Animation door;
    door.pushBackInLayer("light", Transition, {0, 1}, 10);
    door.pushBackInLayer("light", Hold, {1}, 10);
    Animation bell;
    bell.pushBackInLayer("bell", Hold, {1}, 6);
    door.insert(bell, 15);
    picture("guide-8.svg", "The bell rings at frame 15", door);

    door.pushBack(bell, /*keepOutro=*/true, /*keepIntro=*/true);
    picture("guide-9.svg", "And once more at the end", door);

    door.remove(10, 11);
    picture("guide-10.svg", "Frames 10 to 20 taken out", door);

    const std::vector<Animation> parts = door.splitAt(15, /*keepIntro=*/true, /*keepOutro=*/true);
    door = parts.back(); // the last sound of the bell

    Player player(light.layers);
    for (unsigned int frame = 0; frame < light.durationInFrames(); ++frame) {
        player.seek(frame);
        for (const Track& lamp : player)
            if (const auto value = lamp.value())
                std::cout << frame << ": " << lamp.name() << " shows " << *value << '\n';
            else
                std::cout << frame << ": " << lamp.name() << " is dark\n";
    }

    std::ifstream file(folder + "/rendered.fseq", std::ios::binary);
    Sequence rendered = read_fseq(file, "rendered.fseq", /*limited=*/true);
    Animation& show = rendered.show;
    fit(show, rendered.step); // the ramps behind the bytes
    show.remove(3000, 1000);  // the out point: nothing after 3 s
    show.remove(0, 500);      // the in point: 0.5 s later
    show.introSize = 1000;    // this happens only once
    show = show.loop(2, /*repeatIntro=*/false, /*repeatOutro=*/false);
    std::ofstream edited(folder + "/edited.fseq", std::ios::binary);
    write_fseq(edited, show, rendered.step, rendered.media);
    picture("guide-11.svg", "A light show, edited", show);
    // The guide ends here.
}
