#pragma once

#include <animationmodel/Animation.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <istream>
#include <iterator>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#ifdef __FAST_MATH__ // which takes every float for a number
#error "build without -ffast-math"
#endif

/// \file
/// Animations as JSON, by nlohmann's library, which a program that includes this header has to
/// have:
///
///     const nlohmann::json file = animation;
///     const auto same = file.get<Kiv::Animation>();
///
///     { "fps": 25, "introSize": 10, "outroSize": 10,
///       "layers": { "lamp": [ ["Transition", [0, 1], 10], ["Hold", [0.1], 20] ] } }
///
/// A key is its effect, its arguments and its frames. The effect is its name or, where it has none,
/// its number; a number may also stand for a named one. `fps` may be left out, and is 25 then,
/// whatever `Animation::defaultFps` is; the sizes may be left out, and are 0 then. A "$schema" is
/// accepted and forgotten, and a "version" has to be 1, which none stands for.
///
/// An animation is written and read exactly as it is, neither filled nor checked: layers may differ
/// in length, and sizes and frame rate may be such that a copy would be refused. What is written is
/// read back equal, every float with the same bits. Only a NaN may get other bits: it is written as
/// "nan", and infinities as "inf" and "-inf". Any other float is written as the shortest text that
/// reads back as this float: 0.1, not 0.10000000149011612. A number that is read is rounded to the
/// nearest double, and that to the nearest float; `-0` without a point is 0.
///
/// Reading refuses what is no such animation, unknown members included, and a number too great for
/// a float. Writing refuses a key that its constructors would refuse, as open fields may leave one,
/// and a layer name that is not UTF-8. Both throw std::invalid_argument, with the place as a JSON
/// pointer and what is wrong there: "/layers/lamp/2/0: ...".

namespace Kiv {

/// Is called while a text is read or written, with how much is done and how much there is to do. It
/// may throw to give up. An empty one is not called.
using JsonProgress = std::function<void(std::size_t done, std::size_t all)>;

/// The animation that a text in JSON describes. Throws std::invalid_argument where reading does;
/// for a text that is not JSON, with line and column; for a number beyond a double's range; and for
/// an object that has two members of the same name, of which `nlohmann::json::parse` alone would
/// drop one.
///
/// `progress` is called with bytes: before every 64 kB, and in the end.
[[nodiscard]] Animation animation_from_json(std::string_view text,
                                            const JsonProgress& progress = {});

/// The animation as a text in JSON, each key in a line of its own. What `dump` prints is the same,
/// but in one line, and some floats have more digits than they need. Throws
/// std::invalid_argument where writing does. `progress` is called with keys, after each one.
[[nodiscard]] std::string animation_to_json(const Animation& animation,
                                            const JsonProgress& progress = {});

/// \cond
namespace json_file {

constexpr std::array<std::string_view, 4> effects{"Transition", "Hold", "NoValue", "Wait"};

/// A place in a file: the whole, or a member or an element of what lies around it.
struct Place {
    Place() = default;
    Place(const Place& around, const std::string& name) : around(&around), name(&name) {}
    Place(const Place& around, std::size_t index) : around(&around), index(index) {}

    nlohmann::json::json_pointer pointer() const {
        nlohmann::json::json_pointer from;
        for (const Place* place = this; place->around != nullptr; place = place->around) {
            const nlohmann::json::json_pointer root;
            from = (place->name != nullptr ? root / *place->name : root / place->index) / from;
        }
        return from;
    }

    const Place* around = nullptr;
    const std::string* name = nullptr;
    std::size_t index = 0;
};

[[noreturn]] inline void refuse(const nlohmann::json::json_pointer& place, std::string_view what) {
    std::string text = place.to_string();
    if (!text.empty())
        text += ": ";
    throw std::invalid_argument(text.append(what));
}

[[noreturn]] inline void refuse(const Place& place, std::string_view what) {
    refuse(place.pointer(), what);
}

/// A value as it is told to people, if it is short.
template <class Json>
std::string shown(const Json& value) {
    if (value.is_structured())
        return value.type_name();
    const std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    return text.size() <= 60 ? text : value.type_name();
}

template <class Json>
[[noreturn]] void refuse(const Place& place, std::string_view needs, const Json& value) {
    refuse(place, std::string("needs ").append(needs).append(", not ").append(shown(value)));
}

/// Empty if the effect has no name.
inline std::string_view name_of(AnimationKeyCommandEffect effect) {
    const auto index = static_cast<std::uint32_t>(effect);
    return index < std::size(effects) ? effects[index] : std::string_view();
}

inline std::string shown(AnimationKeyCommandEffect effect) {
    const std::string_view name = name_of(effect);
    return name.empty() ? "effect " + std::to_string(std::int32_t{effect}) : std::string(name);
}

/// The command of these parts, which its constructor may refuse.
inline AnimationKeyCommand command_of(const Place& key, AnimationKeyCommandEffect effect,
                                      const std::vector<float>& args) {
    try {
        return {effect, args};
    } catch (const std::invalid_argument& error) {
        refuse({key, 1}, shown(effect) + ": " + error.what());
    }
}

/// Whether the value is this text.
template <class Json>
bool is(const Json& value, std::string_view text) {
    const auto* given = value.template get_ptr<const typename Json::string_t*>();
    return given != nullptr && *given == text;
}

template <class Json>
float float_of(const Place& place, const Json& value) {
    if (value.is_number()) {
        const auto number = static_cast<float>(value.template get<double>());
        if (std::isfinite(number))
            return number;
    }
    if (is(value, "nan"))
        return std::numeric_limits<float>::quiet_NaN();
    if (is(value, "inf"))
        return std::numeric_limits<float>::infinity();
    if (is(value, "-inf"))
        return -std::numeric_limits<float>::infinity();
    refuse(place, R"(a number within the floats' range, "nan", "inf" or "-inf")", value);
}

/// A whole number from `least` on within the range of `Whole`, which has up to 32 bits.
template <class Whole, class Json>
Whole whole_of(const Place& place, const Json& value, std::string_view needs,
               Whole least = std::numeric_limits<Whole>::min()) {
    constexpr Whole most = std::numeric_limits<Whole>::max();
    const double number = value.is_number() ? value.template get<double>() : 0.5;
    if (number < least || number > most || std::floor(number) != number)
        refuse(place,
               std::string(needs) + " from " + std::to_string(least) + " to " +
                   std::to_string(most),
               value);
    return static_cast<Whole>(number);
}

template <class Json>
std::uint32_t frames_of(const Place& place, const Json& value, std::uint32_t least = 0) {
    return whole_of<std::uint32_t>(place, value, "a number of frames", least);
}

template <class Json>
AnimationKeyCommandEffect effect_of(const Place& place, const Json& value) {
    for (std::size_t i = 0; i < std::size(effects); ++i)
        if (is(value, effects[i]))
            return static_cast<AnimationKeyCommandEffect>(i);
    constexpr auto needs = "Transition, Hold, NoValue, Wait or a number";
    return static_cast<AnimationKeyCommandEffect>(whole_of<std::int32_t>(place, value, needs));
}

template <class Json>
AnimationKey key_of(const Place& place, const Json& key) {
    if (!key.is_array() || key.size() != 3)
        refuse(place, "needs an effect, its arguments and a number of frames, [\"Hold\", [1], 5]");
    const AnimationKeyCommandEffect effect = effect_of({place, 0}, key[0]);
    const Place argsPlace(place, 1);
    if (!key[1].is_array())
        refuse(argsPlace, "an array of arguments", key[1]);
    std::vector<float> args;
    for (const Json& value : key[1])
        args.push_back(float_of({argsPlace, args.size()}, value));
    const AnimationKeyCommand command = command_of(place, effect, args);
    return {command, frames_of({place, 2}, key[2], 1)};
}

template <class Json>
LayerMap layers_of(const Place& place, const Json& file) {
    if (!file.is_object())
        refuse(place, "an object of layers", file);
    LayerMap layers;
    for (const auto& [name, keys] : file.items()) {
        const Place layerPlace(place, name);
        if (!keys.is_array())
            refuse(layerPlace, "an array of keys", keys);
        KeyVector& layer = layers[name];
        layer.reserve(keys.size());
        for (const Json& key : keys)
            layer.push_back(key_of({layerPlace, layer.size()}, key));
    }
    return layers;
}

template <class Json>
Animation animation_of(const Json& file) {
    const Place whole;
    if (!file.is_object())
        refuse(whole, "an object with layers", file);
    const auto version = file.find("version");
    if (version != file.end() && *version != 1)
        refuse(whole, "is of version " + shown(*version) + ", which this library does not know");
    if (!file.contains("layers"))
        refuse(whole, "needs a member \"layers\"");
    Animation result(25.0F);
    for (const auto& [name, value] : file.items()) {
        const Place place(whole, name);
        if (name == "layers")
            result.layers = layers_of(place, value);
        else if (name == "fps")
            result.fps = float_of(place, value);
        else if (name == "introSize")
            result.introSize = frames_of(place, value);
        else if (name == "outroSize")
            result.outroSize = frames_of(place, value);
        else if (name == "$schema" && !value.is_string())
            refuse(place, "the name of a schema", value);
        else if (name != "$schema" && name != "version")
            refuse(place,
                   "no such member: these are fps, introSize, outroSize, layers, version and "
                   "$schema");
    }
    return result;
}

inline std::string text_of(float value) {
    if (std::isnan(value))
        return "\"nan\"";
    if (std::isinf(value))
        return value < 0 ? "\"-inf\"" : "\"inf\"";
    return value == 0 && std::signbit(value) ? "-0.0"
                                             : shortest_text(value); // -0 would be an integer
}

/// Appends the text of one key.
inline void append_key(std::string& text, const AnimationKey& key) {
    const std::string_view effect = name_of(key.command.effect);
    if (effect.empty())
        text.append("[").append(std::to_string(std::int32_t{key.command.effect})).append(", [");
    else
        text.append("[\"").append(effect).append("\", [");
    const char* before = "";
    for (const float value : key.command.args)
        text.append(std::exchange(before, ", ")).append(text_of(value));
    text.append("], ").append(std::to_string(key.duration)).append("]");
}

/// The number that the text of a float stands for, or that text: it has few digits.
template <class Json>
Json value_of(float value) {
    return Json::parse(text_of(value));
}

template <class Json>
Json value_of(const AnimationKey& key) {
    const std::string_view name = name_of(key.command.effect);
    Json effect = std::int32_t{key.command.effect};
    if (!name.empty())
        effect = name;
    Json args = Json::array();
    for (const float value : key.command.args)
        args.push_back(value_of<Json>(value));
    return Json::array({std::move(effect), std::move(args), key.duration});
}

/// Refuses what could not be read.
inline void check(const LayerMap& layers) {
    using nlohmann::json;
    const Place whole;
    const std::string member = "layers";
    const Place layersPlace(whole, member);
    for (const auto& [name, keys] : layers) {
        const std::string shown = json(name).dump(-1, ' ', true, json::error_handler_t::replace);
        if (json::parse(shown) != name)
            refuse(layersPlace, "needs names in UTF-8, not " + shown);
        const Place layerPlace(layersPlace, name);
        std::size_t index = 0;
        for (const AnimationKey& key : keys) {
            const Place place(layerPlace, index++);
            command_of(place, key.command.effect, key.command.args);
            frames_of({place, 2}, json(key.duration), 1);
        }
    }
}

/// Whether a byte of UTF-8 is the first of a character.
inline bool begins_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
}

/// The first 200 bytes, not cut inside a character.
inline std::string begin_of(std::string_view text) {
    std::size_t size = std::min<std::size_t>(text.size(), 200);
    while (size < text.size() && size > 0 && !begins_character(text[size]))
        --size;
    return std::string(text.substr(0, size));
}

/// The line and the column of a byte, both from 1 on.
inline std::string position_of(std::string_view text, std::size_t byte) {
    const std::string_view before = text.substr(0, byte);
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const auto characters = std::count_if(line.begin(), line.end(), begins_character);
    return "line " + std::to_string(lines + 1) + ", column " + std::to_string(characters + 1);
}

/// The character that begins with a byte, in quotes; where it is not of ASCII or cannot be seen,
/// also as \u and its number.
inline std::string character_at(std::string_view text, std::size_t byte) {
    using nlohmann::json;
    if (byte >= text.size())
        return "the end";
    std::size_t end = byte + 1;
    while (end < text.size() && end < byte + 4 && !begins_character(text[end]))
        ++end;
    const json character = text.substr(byte, end - byte);
    const auto replace = json::error_handler_t::replace;
    const std::string shown = character.dump(-1, ' ', false, replace);
    const std::string number = character.dump(-1, ' ', true, replace);
    return shown == number ? shown : shown + " (" + number.substr(1, number.size() - 2) + ")";
}

/// Where a text is no JSON, and why.
inline std::string fault_of(std::string_view text, const nlohmann::json::parse_error& error) {
    // "[json...] parse error at line ...: syntax error while parsing ... - " and why: "unexpected
    // ...", or what is wrong with a character, "; last read: '...'", which may end inside one.
    const std::string_view what = error.what();
    const std::string_view reason = what.substr(what.find(" - ") + 3);
    const std::size_t byte = error.byte - 1;
    const std::size_t read = reason.find("; last read: ");
    std::string fault = position_of(text, byte) + ": ";
    if (read == std::string_view::npos)
        return fault.append(reason);
    return fault.append(reason.substr(0, read)) + " at " + character_at(text, byte);
}

/// Refuses an object with two members of the same name, while it is parsed: afterwards only the
/// last one would be there.
class Names {
public:
    bool operator()(int depth, nlohmann::json::parse_event_t event, const nlohmann::json& value) {
        using Event = nlohmann::json::parse_event_t;
        if (event == Event::key) {
            add(value.get_ref<const std::string&>());
        } else if (event == Event::object_start || event == Event::array_start) {
            around.emplace_back();
        } else {
            around.resize(static_cast<std::size_t>(depth));
            if (!around.empty())
                ++around.back().index;
        }
        return true;
    }

private:
    /// An object or an array around what is parsed.
    struct Level {
        std::unique_ptr<std::set<std::string>> names; ///< None in an array.
        const std::string* name = nullptr;            ///< Of the member that is parsed.
        std::size_t index = 0;                        ///< Of the element.
    };

    void add(const std::string& name) {
        Level& object = around.back();
        if (object.names == nullptr)
            object.names = std::make_unique<std::set<std::string>>();
        const auto [place, isNew] = object.names->insert(name);
        object.name = &*place;
        if (!isNew)
            refuse(pointer(), "is there twice");
    }

    nlohmann::json::json_pointer pointer() const {
        nlohmann::json::json_pointer place;
        for (const Level& level : around)
            level.name != nullptr ? place /= * level.name : place /= level.index;
        return place;
    }

    std::vector<Level> around;
};

/// A text that is read in parts. Before each one, and in the end, `progress` is told how far that
/// is.
class Parts : public std::streambuf {
public:
    Parts(std::string_view text, const JsonProgress& progress) : text(text), progress(progress) {}

private:
    int_type underflow() override {
        constexpr std::size_t most = 65536;
        if (progress)
            progress(done, text.size());
        const std::string_view part = text.substr(done, most);
        char* begin = const_cast<char*>(part.data()); // as it wants it; nothing is put there
        setg(begin, begin, begin + part.size());
        done += part.size();
        return part.empty() ? traits_type::eof() : traits_type::to_int_type(part[0]);
    }

    std::string_view text;
    const JsonProgress& progress;
    std::size_t done = 0;
};

} // namespace json_file
/// \endcond

inline Animation animation_from_json(std::string_view text, const JsonProgress& progress) {
    const std::size_t nul = text.find('\0'); // where the parser would take the text to end
    if (nul != std::string_view::npos)
        throw std::invalid_argument(json_file::position_of(text, nul) + ": unexpected " +
                                    json_file::character_at(text, nul));
    try {
        json_file::Names names;
        json_file::Parts parts(text, progress);
        std::istream in(&parts);
        return json_file::animation_of(nlohmann::json::parse(in, std::ref(names)));
    } catch (const nlohmann::json::parse_error& error) {
        throw std::invalid_argument(json_file::fault_of(text, error));
    } catch (const nlohmann::json::exception& error) {
        const std::string_view what = error.what(); // "[json.exception...] parse error at line ..."
        throw std::invalid_argument(json_file::begin_of(what.substr(what.find(']') + 2)));
    }
}

inline std::string animation_to_json(const Animation& animation, const JsonProgress& progress) {
    using namespace json_file;
    check(animation.layers);
    std::size_t done = 0;
    std::size_t all = 0;
    for (const auto& [name, keys] : animation.layers)
        all += keys.size();
    std::string text = "{\n  \"fps\": " + text_of(animation.fps) +
                       ",\n  \"introSize\": " + std::to_string(animation.introSize) +
                       ",\n  \"outroSize\": " + std::to_string(animation.outroSize) +
                       ",\n  \"layers\": {";
    const char* beforeLayer = "\n    ";
    for (const auto& [name, keys] : animation.layers) {
        text += std::exchange(beforeLayer, ",\n    ") + nlohmann::json(name).dump() + ": [";
        const char* beforeKey = "\n      ";
        for (const AnimationKey& key : keys) {
            text += std::exchange(beforeKey, ",\n      ");
            append_key(text, key);
            if (progress)
                progress(++done, all);
        }
        text += keys.empty() ? "]" : "\n    ]";
    }
    return text + (animation.layers.empty() ? "}\n}\n" : "\n  }\n}\n");
}

/// \cond
// A class that derives from Animation, as Rotation does, is written and read as one by these,
// unless it has its own.
template <class Json, class = typename Json::json_pointer>
void to_json(Json& file, const Animation& animation) {
    using namespace json_file;
    check(animation.layers);
    file = Json::object();
    file["fps"] = value_of<Json>(animation.fps);
    file["introSize"] = animation.introSize;
    file["outroSize"] = animation.outroSize;
    Json& layers = file["layers"] = Json::object();
    for (const auto& [name, keys] : animation.layers) {
        Json& layer = layers[name] = Json::array();
        for (const AnimationKey& key : keys)
            layer.push_back(value_of<Json>(key));
    }
}
template <class Json, class = typename Json::json_pointer>
void from_json(const Json& file, Animation& animation) {
    animation = json_file::animation_of(file);
}
/// \endcond

} // namespace Kiv

/// \cond
/// Reads an animation that needs no default frame rate to be made first.
template <>
struct nlohmann::adl_serializer<Kiv::Animation> {
    template <class Json>
    static void to_json(Json& file, const Kiv::Animation& animation) {
        Kiv::to_json(file, animation);
    }
    template <class Json>
    static Kiv::Animation from_json(const Json& file) {
        return Kiv::json_file::animation_of(file);
    }
    template <class Json>
    static void from_json(const Json& file, Kiv::Animation& animation) {
        Kiv::from_json(file, animation);
    }
};
/// \endcond
