#include "Text.h"

#include <animationmodel/Rotation.h>
#include <animationmodel/json.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using namespace Kiv;
using nlohmann::json;

TEST(JsonTest, WritesWhatPeopleWouldWrite) {
    Animation show = animation("lamp: T0,1:10 H0.1:20 W:5; motor: E4:2 E-2147483648:1 "
                               "E2147483647:4294967295; none:  | 10 4294967295");
    const std::string text =
        R"({"fps":25,"introSize":10,"layers":{"lamp":[["Transition",[0,1],10],["Hold",[0.1],20],)"
        R"(["Wait",[],5]],"motor":[[4,[],2],[-2147483648,[],1],[2147483647,[],4294967295]],)"
        R"("none":[]},"outroSize":4294967295})";
    EXPECT_EQ(json(show).dump(), text);
    EXPECT_EQ(animation_from_json(text), show);
    const Rotation rotation(1, 0, 3, 2, 4);
    EXPECT_EQ(json(rotation).get<Animation>(), static_cast<const Animation&>(rotation));
}

TEST(JsonTest, WritesEachKeyInALine) {
    // Read as a double, 7.038531e-26 is halfway to the next float.
    Animation show = animation("lamp: T-0,0x1.5c87fap-84:10 W:5; none:  | 10 9");
    show.fps = NAN;
    const std::string text = R"({
  "fps": "nan",
  "introSize": 10,
  "outroSize": 9,
  "layers": {
    "lamp": [
      ["Transition", [-0.0, 7.0385307e-26], 10],
      ["Wait", [], 5]
    ],
    "none": []
  }
}
)";
    EXPECT_EQ(animation_to_json(show), text);
    EXPECT_EQ(animation_to_json(animation_from_json(text)), text);
}

TEST(JsonTest, ReadsWhatIsLeftOut) {
    Animation::defaultFps = 0;
    const std::string text =
        R"({"$schema": "", "version": 1.0, "layers": {"a": [[1, [-0.5], 1e1]]}})";
    const Animation show = json::parse(text).get<Animation>();
    Animation::defaultFps = 25;
    EXPECT_EQ(show, animation("a: H-0.5:10"));
}

TEST(JsonTest, ReadsIntoAnAnimationOrLeavesIt) {
    Animation show;
    json(animation("a: H1:1 | 1 0")).get_to(show);
    EXPECT_EQ(show, animation("a: H1:1 | 1 0"));
    EXPECT_NE(refusal([&] { json::parse(R"({"layers": {"b": 1}})").get_to(show); }), "");
    EXPECT_EQ(show, animation("a: H1:1 | 1 0"));
}

struct Titled : Animation {
    std::string title;
};
void to_json(json& file, const Titled& titled) {
    file = titled.title;
}

TEST(JsonTest, LeavesClassesThatDeriveTheirOwnText) {
    Titled titled;
    titled.title = "own";
    EXPECT_EQ(json(titled), "own");
}

TEST(JsonTest, TellsHowFarItIs) {
    Animation show;
    show.layers["a"].assign(3000, {{Hold, {0.5F}}, 1});
    std::vector<std::size_t> told;
    std::size_t all = 0;
    const auto progress = [&](std::size_t done, std::size_t of) {
        told.push_back(done);
        all = of;
    };
    const std::string text = animation_to_json(show, progress);
    EXPECT_EQ(told.size(), 3000U);
    EXPECT_EQ(told.front(), 1U);
    EXPECT_EQ(told.back(), 3000U);
    EXPECT_EQ(all, 3000U);
    told.clear();
    EXPECT_EQ(animation_from_json(text, progress), show);
    EXPECT_EQ(told, (std::vector<std::size_t>{0, 65536, text.size()}));
    EXPECT_EQ(all, text.size());
    const auto give_up = [](std::size_t, std::size_t) { throw std::invalid_argument("enough"); };
    EXPECT_EQ(refusal([&] { return animation_from_json(text, give_up); }), "enough");
}

/// As edits may leave them, with any floats.
TEST(JsonTest, ReadsBackTheSameBits) {
    std::mt19937 generator;
    std::uniform_int_distribution<std::uint32_t> distribution;
    const auto random = [&] { return distribution(generator); };
    const auto any_float = [&] {
        const std::uint32_t bits = random() % 16 == 0 ? random() << 23 : random(); // powers of two
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return std::isnan(value) ? std::numeric_limits<float>::quiet_NaN() : value;
    };
    for (int i = 0; i < 10000; ++i) {
        Animation show(25);
        show.fps = any_float();
        show.introSize = random();
        show.layers["a/~\"\n\u00e9"] = {{{Transition, {any_float(), any_float()}}, UINT_MAX}};
        show.layers[""] = {{{Hold, {any_float()}}, 1}, {Wait, 2}};
        const std::string text = json(show).dump();
        const Animation back = animation_from_json(text);
        EXPECT_EQ(json(back).dump(), text);
        EXPECT_EQ(std::memcmp(&back.fps, &show.fps, sizeof show.fps), 0) << text;
        for (const auto& [name, keys] : show.layers) {
            const std::size_t size = keys.size() * sizeof keys[0];
            EXPECT_EQ(std::memcmp(back.layers.at(name).data(), keys.data(), size), 0) << text;
        }
    }
}

TEST(JsonTest, RefusesToWriteWhatCouldNotBeRead) {
    Animation show = animation("a: H1:1 H1:1");
    show.layers["a"][1].duration = 0;
    const std::string said = "/layers/a/1/2: needs a number of frames from 1 to 4294967295, not 0";
    EXPECT_EQ(refusal([&] { json file = show; }), said);
    EXPECT_EQ(refusal([&] { return animation_to_json(show); }), said);
    show.layers = {{"\xff", {}}};
    EXPECT_EQ(refusal([&] { json file = show; }), R"(/layers: needs names in UTF-8, not "\ufffd")");
}

/// What Python's tests cannot write; they have all other refusals.
TEST(JsonTest, RefusesWhatIsNoText) {
    EXPECT_EQ(refusal([&] { return animation_from_json("[\"\xff"); }),
              "line 1, column 3: invalid string: ill-formed UTF-8 byte at \"\ufffd\" (\\ufffd)");
    const json made = {{"layers", json::object()}, {"fps", "\xff"}};
    EXPECT_EQ(refusal([&] { static_cast<void>(made.get<Animation>()); }),
              "/fps: needs a number within the floats' range, \"nan\", \"inf\" or \"-inf\", not "
              "\"\ufffd\"");
}
