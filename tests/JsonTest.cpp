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

TEST(JsonTest, RefusesWhatIsNoAnimation) {
    const std::string whole = "needs a number of frames from 0 to 4294967295, not ";
    const std::string duration = "needs a number of frames from 1 to 4294967295, not ";
    const std::string number =
        R"(needs a number within the floats' range, "nan", "inf" or "-inf", )";
    const std::string effect = "needs Transition, Hold, NoValue, Wait or a number from "
                               "-2147483648 to 2147483647, not ";
    const std::string nines(58, '9'); // are shown, one more is not
    const struct {
        std::string text, expected;
    } rows[] = {
        {"[]", "needs an object with layers, not array"},
        {"{}", "needs a member \"layers\""},
        {R"({"layer": {}, "layers": {}})", "/layer: no such member: these are fps, introSize, "
                                           "outroSize, layers, version and $schema"},
        {R"({"version": 2, "keys": {}})", "is of version 2, which this library does not know"},
        {R"({"$schema": 5, "layers": {}})", "/$schema: needs the name of a schema, not 5"},
        {R"({"layers": []})", "/layers: needs an object of layers, not array"},
        {R"({"layers": {}, "introSize": -1})", "/introSize: " + whole + "-1"},
        {R"({"layers": {}, "outroSize": 4294967296})", "/outroSize: " + whole + "4294967296"},
        {R"({"layers": {}, "introSize": true})", "/introSize: " + whole + "true"},
        {R"({"layers": {}, "introSize": 1.5})", "/introSize: " + whole + "1.5"},
        {R"({"layers": {}, "fps": null})", "/fps: " + number + "not null"},
        {R"({"layers": {}, "fps": ")" + nines + "\"}", "/fps: " + number + "not \"" + nines + "\""},
        {R"({"layers": {}, "fps": "9)" + nines + "\"}", "/fps: " + number + "not string"},
        {R"({"layers": {"a/b": 1}})", "/layers/a~1b: needs an array of keys, not 1"},
        {R"({"layers": {"a": [["Wait", [], 1], ["Wait", []]]}})",
         "/layers/a/1: needs an effect, its arguments and a number of frames, [\"Hold\", [1], 5]"},
        {R"({"layers": {"a": [["hold", [1], 1]]}})", "/layers/a/0/0: " + effect + "\"hold\""},
        {R"({"layers": {"a": [[2147483648,[],1]]}})", "/layers/a/0/0: " + effect + "2147483648"},
        {R"({"layers": {"a": [[-2147483649,[],1]]}})", "/layers/a/0/0: " + effect + "-2147483649"},
        {R"({"layers": {"a": [["Hold", 1, 1]]}})",
         "/layers/a/0/1: needs an array of arguments, not 1"},
        {R"({"layers": {"a": [["Transition", [0, 1e39], 1]]}})",
         "/layers/a/0/1/1: " + number + "not 1e+39"},
        {R"({"layers": {"a": [["Hold", ["NaN"], 1]]}})",
         "/layers/a/0/1/0: " + number + "not \"NaN\""},
        {R"({"layers": {"a": [["Hold", [1], [2]]]}})", "/layers/a/0/2: " + duration + "array"},
        {R"({"layers": {"a": [["Wait", [], 0]]}})", "/layers/a/0/2: " + duration + "0"},
        {R"({"layers": {"a": [["Wait", [1], 1]]}})",
         "/layers/a/0/1: Wait: Could not set attributes of AnimationKeyCommand: the number of "
         "arguments "
         "does not correspond to the command (1 arguments given but 0 expected for command 3)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(refusal([&] { static_cast<void>(json::parse(row.text).get<Animation>()); }),
                  row.expected);
        EXPECT_EQ(refusal([&] { return animation_from_json(row.text); }), row.expected);
    }
    const json made = {{"layers", json::object()}, {"fps", "\xff"}}; // is read from no text
    EXPECT_EQ(refusal([&] { static_cast<void>(made.get<Animation>()); }),
              "/fps: " + number + "not \"\ufffd\"");
}

TEST(JsonTest, RefusesTextsThatCannotBeRead) {
    const std::string deep(1000000, '[');
    const struct {
        std::string text, expected;
    } rows[] = {
        {"{\"layers\":\n {,", "line 2, column 3: unexpected ','; expected string literal"},
        {"{\n \"é\": “}", "line 2, column 7: invalid literal at \"“\" (\\u201c)"},
        {"{\u00a0}", "line 1, column 2: invalid literal at \"\u00a0\" (\\u00a0)"},
        {"[\"\n", "line 1, column 3: invalid string: control character U+000A (LF) must be escaped "
                  "to \\u000A or \\n at \"\\n\""},
        {"[\"\xff",
         "line 1, column 3: invalid string: ill-formed UTF-8 byte at \"\ufffd\" (\\ufffd)"},
        {"[\"; last read: '",
         "line 1, column 17: invalid string: missing closing quote at the end"},
        {R"({"layers": {}})" + std::string(1, '\0'), R"(line 1, column 15: unexpected "\u0000")"},
        {R"({"layers": {"a": [["Hold", [1e999], 1]]}})", "number overflow parsing '1e999'"},
        {"\"xy€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€", // cut at 200 bytes, between two characters
         "parse error at line 1, column 94: syntax error while parsing value - invalid string: "
         "missing closing quote; last read: '\"xy€€€€€€€€€€€€€€€€€€€€€€€€€"},
        {R"({"layers": {}, "fps": 1, "fps": 2})", "/fps: is there twice"},
        {R"({"layers": {"a": [], "fps": [], "a": []}})", "/layers/a: is there twice"},
        {R"([[], {"a": 1, "b": {"a": 2}, "a": 3}])", "/1/a: is there twice"},
        {deep + std::string(deep.size(), ']'), "needs an object with layers, not array"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(refusal([&] { return animation_from_json(row.text); }), row.expected);
}

TEST(JsonTest, RefusesToWriteWhatCouldNotBeRead) {
    Animation show = animation("a: H1:1 H1:1");
    show.layers["a"][1].duration = 0;
    EXPECT_EQ(refusal([&] { json file = show; }),
              "/layers/a/1/2: needs a number of frames from 1 to 4294967295, not 0");
    show.layers = {{"\xff", {}}};
    EXPECT_EQ(refusal([&] { json file = show; }), R"(/layers: needs names in UTF-8, not "\ufffd")");
}
