// Animations in Python. Nothing is decided here: names become Python's, and what Python's lists and
// dicts would do beside.

#include "Layer.h"
#include "Measures.h"
#include "Picture.h"
#include "docstrings.h"
#include <animationmodel/play.h>

#include <animationmodel/Rotation.h>
#include <animationmodel/json.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>
#include <utility>

namespace py = pybind11;
using namespace Kiv;
using namespace pybind11::literals;

namespace {

using Effect = AnimationKeyCommandEffect;

/// Any whole number.
struct Whole {
    py::object number;
};

/// One key or any iterable of them.
struct KeyOrKeys {
    py::object given;
};

/// The name of a layer or another text: a str, and no bytes.
struct Name {
    std::string text;
    operator const std::string&() const { return text; }
};

} // namespace

namespace pybind11::detail {

template <>
struct type_caster<Whole> {
    PYBIND11_TYPE_CASTER(Whole, const_name("int"));
    bool load(handle source, bool /*convert*/) {
        if (PyIndex_Check(source.ptr()) == 0)
            return false;
        value.number = reinterpret_steal<object>(PyNumber_Index(source.ptr()));
        if (!value.number)
            PyErr_Clear();
        return static_cast<bool>(value.number);
    }
};

template <>
struct type_caster<KeyOrKeys> {
    PYBIND11_TYPE_CASTER(KeyOrKeys, const_name("Union[Key, Iterable[Key]]"));
    bool load(handle source, bool /*convert*/) {
        value.given = reinterpret_borrow<object>(source);
        return true;
    }
};

template <>
struct type_caster<Name> {
    PYBIND11_TYPE_CASTER(Name, const_name("str"));
    bool load(handle source, bool convert) {
        make_caster<std::string> text;
        if (PyUnicode_Check(source.ptr()) == 0 || !text.load(source, convert))
            return false;
        value.text = cast_op<std::string&&>(std::move(text));
        return true;
    }
};

} // namespace pybind11::detail

namespace {

// What Python gives, as the value that C++ takes; `name` is that of the argument or the member.

template <class Type>
const Type& value(const char* /*name*/, const Type& given) {
    return given;
}

unsigned int value(const char* name, const Whole& given) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(given.number.ptr(), &overflow);
    constexpr auto most = std::numeric_limits<unsigned int>::max();
    if (overflow != 0 || number < 0 || number > most)
        throw py::value_error(std::string(name) + " has to be 0 to " + std::to_string(most) +
                              (overflow != 0 ? "" : ", not " + std::to_string(number)));
    return static_cast<unsigned int>(number);
}

float value(const char* name, double given) {
    const auto nearest = static_cast<float>(given);
    if (std::isinf(nearest) && !std::isinf(given))
        throw py::value_error(std::string(name) + " has to be within the range of 32-bit floats");
    return nearest;
}

/// An object as a C++ value, or TypeError.
template <class Value>
Value taken(py::handle given, const char* needs) {
    try {
        if (!given.is_none())
            return given.cast<Value>();
    } catch (const py::cast_error&) { // is told below
    }
    throw py::type_error(std::string("needs ") + needs + ", not " +
                         py::repr(py::type::of(given)).cast<std::string>());
}

AnimationKey key_of(Effect effect, const std::vector<double>& given, unsigned int duration) {
    std::vector<float> args;
    args.reserve(given.size());
    for (const double number : given)
        args.push_back(value("args", number));
    return {AnimationKeyCommand(effect, args), duration};
}

AnimationKey key_of(Effect effect, const std::vector<double>& args, const Whole& duration) {
    return key_of(effect, args, value("duration", duration));
}

KeyVector keys_of(const py::object& given) {
    if (py::isinstance<Layer>(given))
        return given.cast<Layer&>().keys();
    KeyVector keys;
    for (const py::handle key : given)
        keys.push_back(taken<Key&>(key, "a Key").get());
    return keys;
}

KeyVector value(const char* /*name*/, const KeyOrKeys& keys) {
    if (py::isinstance<Key>(keys.given))
        return {keys.given.cast<Key&>().get()};
    return keys_of(keys.given);
}

py::list list_of(const KeyVector& keys) {
    py::list list;
    for (const AnimationKey& key : keys)
        list.append(std::make_shared<Key>(key));
    return list;
}

LayerMap layers_of(const py::object& given) {
    LayerMap layers;
    for (const auto& [name, keys] : py::dict(given))
        layers[taken<Name>(name, "a str")] = keys_of(py::reinterpret_borrow<py::object>(keys));
    return layers;
}

py::dict dict_of(const LayerMap& layers) {
    py::dict dict;
    for (const auto& [name, keys] : layers)
        dict[py::str(name)] = list_of(keys);
    return dict;
}

Animation animation_of(const py::object& layers, const Whole& introSize, const Whole& outroSize,
                       std::optional<double> fps) {
    Animation parts(1);
    parts.layers = layers.is_none() ? LayerMap() : layers_of(layers);
    parts.introSize = value("intro_size", introSize);
    parts.outroSize = value("outro_size", outroSize);
    parts.fps = fps ? value("fps", *fps) : Animation::defaultFps;
    return Animation(parts); // fills and checks, as moving would not
}

// A copy as a Python programmer means it: the same, neither filled nor checked.
Animation same(const Animation& animation) {
    Animation copy(1);
    copy.layers = animation.layers;
    copy.introSize = animation.introSize;
    copy.outroSize = animation.outroSize;
    copy.fps = animation.fps;
    return copy;
}
Rotation same(const Rotation& rotation) {
    Rotation copy(rotation.pulseValue, rotation.restValue, rotation.riseDuration,
                  rotation.fallDuration, rotation.stepDuration);
    static_cast<Animation&>(copy) = same(static_cast<const Animation&>(rotation));
    return copy;
}

constexpr std::size_t mostShown = 100; ///< Keys.

template <class Type>
std::string str(const Type& value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string repr(float value) {
    const std::string text = shortest_text(value);
    return std::isfinite(value) ? text : "float('" + text + "')";
}

std::string repr(const AnimationKey& key) {
    const auto effect = static_cast<std::int32_t>(key.command.effect);
    std::string text = effect >= Transition && effect <= Wait
                           ? std::string(json_file::effects[static_cast<std::size_t>(effect)])
                           : "Effect(" + std::to_string(effect) + ")";
    text = "Key(" + text + ", [";
    const char* before = "";
    for (const float value : key.command.args)
        text += std::exchange(before, ", ") + repr(value);
    return text + "], " + std::to_string(key.duration) + ")";
}

std::string repr(const Animation& animation) {
    const std::string fps = repr(animation.fps);
    if (count_keys(animation.layers) > mostShown)
        return "<Animation of " + std::to_string(animation.layers.size()) + " layers, " +
               std::to_string(animation.durationInFrames()) + " frames at " + fps + " fps>";
    return "Animation(" + py::repr(dict_of(animation.layers)).cast<std::string>() +
           ", intro_size=" + std::to_string(animation.introSize) +
           ", outro_size=" + std::to_string(animation.outroSize) + ", fps=" + fps + ")";
}

std::string repr(const Rotation& rotation) {
    return "Rotation(pulse_value=" + repr(rotation.pulseValue) +
           ", rest_value=" + repr(rotation.restValue) +
           ", rise_duration=" + std::to_string(rotation.riseDuration) +
           ", fall_duration=" + std::to_string(rotation.fallDuration) +
           ", step_duration=" + std::to_string(rotation.stepDuration) + ")";
}

/// The picture inside an image of its own, so that several on a page do not share their colours.
py::object framed_svg(const Animation& animation) {
    if (count_keys(animation.layers) > 10000)
        return py::none();
    const std::string svg = svg_of("Animation", animation);
    const auto encode = py::module_::import("base64").attr("b64encode");
    const auto data = encode(py::bytes(svg)).attr("decode")().cast<std::string>();
    const std::string size = svg.substr(svg.find("viewBox"), svg.find('>') - svg.find("viewBox"));
    const std::string measures = size.substr(size.find("width"));
    return py::str("<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + "><image " + measures +
                   " href=\"data:image/svg+xml;base64," + data + "\"/></svg>");
}

py::array_t<float> sampled(const Animation& animation, const Whole& start,
                           const std::optional<Whole>& count) {
    const unsigned int from = value("start", start);
    const unsigned int duration = animation.durationInFrames();
    const unsigned int frames =
        count ? value("count", *count) : duration - std::min(from, duration);
    if (frames > std::numeric_limits<unsigned int>::max() - from)
        throw py::value_error("start + count has to be less than 4294967296");
    const std::size_t layers = animation.layers.size();
    py::module_::import("numpy"); // else threads that do it together wait for each other
    if (layers > 0 && frames > std::size_t{std::numeric_limits<std::ptrdiff_t>::max()} / 4 / layers)
        throw std::bad_alloc();
    py::array_t<float> values({std::size_t{frames}, layers});
    if (layers > 0)
        sample(animation.layers, from, frames, values.mutable_data());
    return values;
}

/// The index in a list of `size` that Python's one is.
std::size_t index_in(std::size_t size, const Whole& given) {
    const auto end = static_cast<py::ssize_t>(size);
    py::ssize_t index =
        PyNumber_AsSsize_t(given.number.ptr(), nullptr); // the nearest that there is
    if (index < 0)
        index += end;
    if (index < 0 || index >= end)
        throw py::index_error("there is no key of that index");
    return static_cast<std::size_t>(index);
}

/// Changes the keys as Python changes a list of them.
template <class Change>
void change_as_list(Layer& layer, const Change& change) {
    py::list list = list_of(layer.keys());
    if (change(list.ptr()) != 0)
        throw py::error_already_set();
    layer.replace_all(keys_of(list));
}

/// Layers by name as Python holds them.
struct Layers {
    SharedAnimation animation;

    std::shared_ptr<Layer> get(const std::string& name) const {
        if (!animation->hasLayer(name))
            throw py::key_error(name);
        return Layer::of(animation, name);
    }
    void set(const std::string& name, const py::object& keys) const {
        if (py::isinstance<Layer>(keys) && keys.cast<Layer&>().isIn(animation, name))
            return; // as `layers[name] += ...` ends
        KeyVector replacement = keys_of(keys);
        if (animation->hasLayer(name))
            Layer::of(animation, name)->take_out();
        animation->layers[name] = std::move(replacement);
    }
    void erase(const std::string& name) const {
        get(name)->take_out();
        animation->layers.erase(name);
    }
    py::list names() const {
        py::list names;
        for (const auto& [name, keys] : animation->layers)
            names.append(py::str(name));
        return names;
    }
};

/// The methods that Python derives from those of a container.
void derive(const py::object& type, const char* base, std::initializer_list<const char*> methods) {
    const py::object from = py::module_::import("collections.abc").attr(base);
    for (const char* method : methods)
        type.attr(method) = from.attr(method);
    from.attr("register")(type);
}

/// Lets every protocol pickle what py::pickle alone lets some do.
template <class Class>
void bind_reduce(Class& type) {
    type.def("__reduce__", [](const py::object& self) {
        return py::make_tuple(py::module_::import("copyreg").attr("__newobj__"),
                              py::make_tuple(py::type::of(self)), self.attr("__getstate__")());
    });
}

/// Refuses what a subclass may try: to use an object before its constructor has run.
template <class Type>
void refuse_unmade() {
    py::detail::get_type_info(typeid(Type))->operator_new = [](std::size_t /*size*/) -> void* {
        throw py::type_error("super().__init__() has to be called first");
    };
}

template <class Self, class... Options, class Copy>
void bind_copies(py::class_<Self, Options...>& type, const Copy& copy) {
    type.def("__copy__", copy)
        .def(
            "__deepcopy__", [copy](Self& self, const py::dict&) { return copy(self); }, "memo"_a);
}

/// What behaves as a list or a dict is shown, copied and pickled as the one that `copy` gives.
/// Where `count` gives more keys than people read, it is shown by their number.
template <class Self, class... Options, class Copy, class Count>
void bind_as_builtin(py::class_<Self, Options...>& type, const Copy& copy, const Count& count) {
    bind_copies(type, copy);
    type.def("__repr__",
             [copy, count](Self& self) {
                 const std::size_t keys = count(self);
                 return keys > mostShown ? py::str("<{} keys>").format(keys) : py::repr(copy(self));
             })
        .def("__reduce__", [copy](Self& self) {
            const auto builtin = copy(self);
            return py::make_tuple(py::type::of(builtin), py::make_tuple(builtin));
        });
}

using AnimationClass = py::class_<Animation, SharedAnimation>;

/// Binds a method that takes what Python gives as `Given`, with the names that its arguments have
/// there.
template <class... Given, class Method, class... Names>
void bind(AnimationClass& type, const char* name, Method method, const char* doc, Names... names) {
    constexpr bool edits = !std::is_invocable_v<Method, const Animation&,
                                                decltype(value("", std::declval<Given>()))...>;
    type.def(
        name,
        [=](const SharedAnimation& self, const Given&... given) {
            const auto call = [&](const auto&... arguments) {
                if constexpr (edits)
                    Layer::edit(*self, [&] { ((*self).*method)(arguments...); });
                else
                    return ((*self).*method)(arguments...);
            };
            return call(value(names, given)...);
        },
        py::arg(names)..., doc);
}

/// Binds a member that Python gives as `Given`.
template <class Given, class Value>
void bind_member(AnimationClass& type, const char* name, Value Animation::*member,
                 const char* doc) {
    type.def_property(
        name, [=](const Animation& self) { return self.*member; },
        [=](Animation& self, const Given& given) { self.*member = value(name, given); }, doc);
}

void bind_keys(py::module_& m) {
    py::enum_<Effect> effect(m, "Effect", doc_AnimationKeyCommandEffect);
    bind_reduce(effect);
    effect.value("Transition", Transition, doc_AnimationKeyCommandEffect_Transition)
        .value("Hold", Hold, doc_AnimationKeyCommandEffect_Hold)
        .value("NoValue", NoValue, doc_AnimationKeyCommandEffect_NoValue)
        .value("Wait", Wait, doc_AnimationKeyCommandEffect_Wait)
        .export_values();

    py::class_<Key, std::shared_ptr<Key>> type(
        m, "Key", R"(An effect with its arguments and the whole frames that it lasts.

One that is taken from a layer is live: what is set in it is set in the layer, until the key leaves
the layer, a slice of that is changed, or an operation edits the animation. From then on it is a key
of its own. Keys are copied into layers.

Arguments are 32-bit floats: two for Transition, one for Hold, none for the other effects. To change
the effect and the arguments together, put another key in its place: `layer[0] = Key(Hold, [1], 5)`.)");
    bind_reduce(type);
    bind_copies(type, [](Key& key) { return std::make_shared<Key>(key.get()); });
    type.def(py::init([](Effect effect, const std::vector<double>& args, const Whole& duration) {
                 return std::make_shared<Key>(key_of(effect, args, duration));
             }),
             "effect"_a, "args"_a, "duration"_a,
             "Raises ValueError unless `args` are as many as `effect` expects, and `duration` is 1 "
             "or more.")
        .def_property(
            "effect", [](Key& key) { return key.get().command.effect; },
            [](Key& key, Effect effect) {
                AnimationKey& place = key.get();
                place.command = AnimationKeyCommand(effect, place.command.args);
            },
            doc_AnimationKeyCommand_effect)
        .def_property(
            "args",
            [](Key& key) {
                const AnimationKeyArgs& args = key.get().command.args;
                return py::tuple(py::cast(std::vector<float>(args)));
            },
            [](Key& key, const std::vector<double>& args) {
                AnimationKey& place = key.get();
                place = key_of(place.command.effect, args, place.duration);
            },
            doc_AnimationKeyCommand_args)
        .def_property(
            "duration", [](Key& key) { return key.get().duration; },
            [](Key& key, const Whole& duration) {
                AnimationKey& place = key.get();
                place = AnimationKey(place.command, value("duration", duration));
            },
            doc_AnimationKey_duration)
        .def(
            "split_at",
            [](Key& key, const Whole& frame) {
                return list_of(key.get().splitAt(value("frame", frame)));
            },
            "frame"_a, doc_AnimationKey_splitAt)
        .def(
            "split_each",
            [](Key& key, const Whole& step) {
                return list_of(key.get().splitEach(value("step", step)));
            },
            "step"_a, doc_AnimationKey_splitEach)
        .def(
            "__eq__", [](Key& a, Key& b) { return a.get() == b.get(); }, py::is_operator())
        .def("__repr__", [](Key& key) { return repr(key.get()); })
        .def("__str__", [](Key& key) { return str(key.get()); })
        .def(py::pickle(
            [](Key& key) {
                const auto& [command, duration] = key.get();
                return py::make_tuple(static_cast<std::int32_t>(command.effect),
                                      std::vector<float>(command.args), duration);
            },
            [](const py::tuple& state) {
                return std::make_shared<Key>(
                    key_of(static_cast<Effect>(state[0].cast<std::int32_t>()),
                           state[1].cast<std::vector<double>>(), state[2].cast<Whole>()));
            }));
}

void bind_layers(py::module_& m) {
    py::class_<Layer, std::shared_ptr<Layer>> list(m, "Layer", R"(The keys of a layer, as a list.

What is changed in it is changed in the animation, as long as the layer is there.)");
    bind_as_builtin(
        list, [](Layer& layer) { return list_of(layer.keys()); },
        [](Layer& layer) { return layer.keys().size(); });
    list.def("__len__", [](Layer& layer) { return layer.keys().size(); })
        .def("__getitem__",
             [](Layer& layer, const Whole& index) {
                 return layer.take(index_in(layer.keys().size(), index));
             })
        .def("__getitem__",
             [](Layer& layer, const py::slice& slice) {
                 py::list keys;
                 for (const py::handle index :
                      py::module_::import("builtins")
                          .attr("range")(*slice.attr("indices")(layer.keys().size())))
                     keys.append(layer.take(index.cast<std::size_t>()));
                 return keys;
             })
        .def("__setitem__",
             [](Layer& layer, const Whole& index, Key& key) {
                 layer.replace(index_in(layer.keys().size(), index), key.get());
             })
        .def("__setitem__",
             [](Layer& layer, const py::slice& slice, const py::object& keys) {
                 const py::list values = list_of(keys_of(keys));
                 change_as_list(layer, [&](PyObject* before) {
                     return PyObject_SetItem(before, slice.ptr(), values.ptr());
                 });
             })
        .def("__delitem__",
             [](Layer& layer, const Whole& index) {
                 layer.erase(index_in(layer.keys().size(), index));
             })
        .def("__delitem__",
             [](Layer& layer, const py::slice& slice) {
                 change_as_list(
                     layer, [&](PyObject* keys) { return PyObject_DelItem(keys, slice.ptr()); });
             })
        .def(
            "insert",
            [](Layer& layer, const Whole& given, Key& key) {
                const auto end = static_cast<py::ssize_t>(layer.keys().size());
                py::ssize_t index = PyNumber_AsSsize_t(given.number.ptr(), nullptr);
                index = std::clamp<py::ssize_t>(index < 0 ? index + end : index, 0, end);
                layer.insert(static_cast<std::size_t>(index), key.get());
            },
            "index"_a, "value"_a, "Inserts a key before the one of that index.")
        .def("__eq__", [](Layer& layer, const py::object& other) -> py::object {
            if (py::isinstance<Layer>(other))
                return py::bool_(layer.keys() == other.cast<Layer&>().keys());
            if (py::isinstance<py::list>(other))
                return py::bool_(py::list(py::cast(&layer)).equal(other));
            return py::reinterpret_borrow<py::object>(Py_NotImplemented);
        });
    derive(list, "MutableSequence",
           {"__iter__", "__contains__", "__reversed__", "__iadd__", "index", "count", "append",
            "clear", "extend", "pop", "remove", "reverse"});

    py::class_<Layers> dict(m, "Layers", R"(The layers of an animation, as a dict.

What is changed in it is changed in the animation. Names are in byte-wise order.)");
    bind_as_builtin(
        dict, [](Layers& layers) { return dict_of(layers.animation->layers); },
        [](Layers& layers) { return count_keys(layers.animation->layers); });
    dict.def("__len__", [](const Layers& layers) { return layers.animation->layers.size(); })
        .def("__getitem__", [](const Layers& layers, const Name& name) { return layers.get(name); })
        .def("__getitem__",
             [](const Layers&, const py::object& other) -> py::object {
                 throw py::key_error(py::repr(other).cast<std::string>());
             })
        .def(
            "setdefault",
            [](const Layers& layers, const Name& name, const py::object& keys) {
                if (!layers.animation->hasLayer(name))
                    layers.set(name, keys);
                return layers.get(name);
            },
            "name"_a, "keys"_a = py::tuple(), "The layer, created with `keys` if it is missing.")
        .def("__setitem__", [](const Layers& layers, const Name& name,
                               const py::object& keys) { layers.set(name, keys); })
        .def("__delitem__", [](const Layers& layers, const Name& name) { layers.erase(name); })
        .def("__iter__", [](const Layers& layers) { return py::iter(layers.names()); });
    derive(dict, "MutableMapping",
           {"__contains__", "__eq__", "keys", "items", "values", "get", "pop", "popitem", "clear",
            "update", "_MutableMapping__marker"}); // the last one stands for no default
}

void bind_questions(AnimationClass& animation) {
    bind<Name>(animation, "has_layer", &Animation::hasLayer, doc_Animation_hasLayer, "name");
    bind<double>(animation, "simulated_duration_in_seconds", &Animation::simulatedDurationInSeconds,
                 doc_Animation_simulatedDurationInSeconds, "fps");
    animation
        .def(
            "layer",
            [](const Animation& self, const Name& name) { return list_of(self.layer(name)); },
            "name"_a, doc_Animation_layer)
        .def("empty", &Animation::empty, doc_Animation_empty)
        .def("duration_in_frames", py::overload_cast<>(&Animation::durationInFrames, py::const_),
             doc_Animation_durationInFrames)
        .def_static(
            "duration_in_frames_of",
            [](const py::object& layers) {
                return py::hasattr(layers, "keys")
                           ? Animation::durationInFramesOf(layers_of(layers))
                           : Animation::durationInFramesOf(keys_of(layers));
            },
            "layers"_a, "Frames of the longest of `layers`, or of one layer; 0 without keys.")
        .def("outro_start_frame", &Animation::outroStartFrame, doc_Animation_outroStartFrame)
        .def("duration_in_seconds", &Animation::durationInSeconds, doc_Animation_durationInSeconds)
        .def("sample", sampled, "start"_a = 0, "count"_a = py::none(),
             R"(The values as numpy.float32, a row for each frame and a column for each layer.

Columns are in the order of `layers`, byte-wise by name: "10" comes before "9", "blue" before "red".
Takes the frames from `start` on, `count` of them or all. The value on a frame is the one that the
layer, cut there, begins with; NaN where there is none: on a Wait, a NoValue and past the end.)");
}

void bind_edits(AnimationClass& animation) {
    using Keys = void (Animation::*)(const std::string&, const KeyVector&);
    using KeysAt = void (Animation::*)(const std::string&, const KeyVector&, unsigned int);
    using KeysFor =
        void (Animation::*)(const std::string&, unsigned int, unsigned int, const KeyVector&);
    bind<Name, Whole>(animation, "fill_in_layer", &Animation::fillInLayer,
                      doc_Animation_fillInLayer, "name", "frames");
    bind<Name, Whole, Whole, KeyOrKeys>(
        animation, "replace_in_layer", KeysFor(&Animation::replaceInLayer),
        doc_Animation_replaceInLayer, "name", "start", "count", "keys");
    bind<Name, KeyOrKeys, Whole>(animation, "insert_in_layer", KeysAt(&Animation::insertInLayer),
                                 doc_Animation_insertInLayer, "name", "keys", "frame");
    bind<Name, KeyOrKeys>(animation, "push_back_in_layer", Keys(&Animation::pushBackInLayer),
                          doc_Animation_pushBackInLayer, "name", "keys");
    bind<Name, Whole, Whole>(animation, "remove_in_layer", &Animation::removeInLayer,
                             doc_Animation_removeInLayer, "name", "start", "count");
    bind<Name, KeyOrKeys, Whole>(animation, "override_layer_with",
                                 KeysAt(&Animation::overrideLayerWith),
                                 doc_Animation_overrideLayerWith, "name", "keys", "frame");
    bind<Whole, Whole, Animation>(animation, "replace", &Animation::replace, doc_Animation_replace,
                                  "start", "count", "other");
    bind<Animation, Whole>(animation, "insert", &Animation::insert, doc_Animation_insert, "other",
                           "frame");
    bind<Animation, bool, bool>(animation, "push_back", &Animation::pushBack,
                                doc_Animation_pushBack, "other", "keep_outro", "keep_intro");
    bind<Whole, Whole>(animation, "remove", &Animation::remove, doc_Animation_remove, "start",
                       "count");
    bind<Animation, Whole>(animation, "override_layers_with", &Animation::overrideLayersWith,
                           doc_Animation_overrideLayersWith, "other", "frame");
    animation
        .def(
            "set_fps_to_fit_duration_in_seconds",
            [](Animation& self, double seconds) {
                self.setFPSToFitDurationInSeconds(value("seconds", seconds));
            },
            "seconds"_a, doc_Animation_setFPSToFitDurationInSeconds)
        .def(
            "reset",
            [](const SharedAnimation& self) {
                Layer::take_all_out(*self);
                self->reset();
            },
            doc_Animation_reset);
}

void bind_results(AnimationClass& animation) {
    bind<Whole, bool, bool>(animation, "loop", &Animation::loop, doc_Animation_loop, "count",
                            "repeat_intro", "repeat_outro");
    bind<Whole, bool, bool>(animation, "split_each", &Animation::splitEach, doc_Animation_splitEach,
                            "step", "keep_intro", "keep_outro");
    animation
        .def(
            "intro_body_outro_layers",
            [](const Animation& self) {
                LayerMap intro;
                LayerMap body;
                LayerMap outro;
                self.introBodyOutroLayers(intro, body, outro);
                return py::make_tuple(dict_of(intro), dict_of(body), dict_of(outro));
            },
            "The layers of the intro, of the body and of the outro, three dicts. Keys across the "
            "intro's end or the outro's start are cut there.")
        .def(
            "split_at",
            [](const Animation& self, const py::object& frames, bool keepIntro, bool keepOutro) {
                py::detail::make_caster<Whole> one;
                if (one.load(frames, false))
                    return self.splitAt(value("frames", py::detail::cast_op<Whole&>(one)),
                                        keepIntro, keepOutro);
                std::set<unsigned int> cuts;
                for (const py::handle frame : frames)
                    cuts.insert(value("frames", taken<Whole>(frame, "an int")));
                return self.splitAt(std::move(cuts), keepIntro, keepOutro);
            },
            "frames"_a, "keep_intro"_a, "keep_outro"_a, doc_Animation_splitAt)
        .def("to_json", animation_to_json, "The animation as a text in JSON, a key a line.")
        .def_static(
            "from_json", [](const Name& text) { return animation_from_json(text.text); }, "text"_a,
            "The animation that a text in JSON describes. Raises ValueError, with the place and "
            "what is wrong there, if it describes none.")
        .def(
            "svg",
            [](const Animation& self, const std::string& title) { return svg_of(title, self); },
            "title"_a = "Animation", "A picture that plays the animation, above its timeline.")
        .def("_repr_svg_", framed_svg);
}

void bind_values(AnimationClass& animation) {
    bind_member<Whole>(animation, "intro_size", &Animation::introSize, doc_Animation_introSize);
    bind_member<Whole>(animation, "outro_size", &Animation::outroSize, doc_Animation_outroSize);
    bind_member<double>(animation, "fps", &Animation::fps, doc_Animation_fps);
    bind_reduce(animation);
    bind_copies(animation, [](const Animation& self) { return same(self); });
    animation
        .def(py::init(&animation_of), "layers"_a = py::none(), "intro_size"_a = 0,
             "outro_size"_a = 0, "fps"_a = py::none(),
             "Copies of `layers`, a dict of iterables of keys, at `default_fps` frames per second "
             "unless `fps` is given. Fills and checks.")
        .def_property_static(
            "default_fps", [](const py::object&) { return Animation::defaultFps; },
            [](const py::object&, double fps) { Animation::defaultFps = value("fps", fps); },
            doc_Animation_defaultFps)
        .def_property(
            "layers", [](const SharedAnimation& self) { return Layers{self}; },
            [](const SharedAnimation& self, const py::object& layers) {
                if (py::isinstance<Layers>(layers) && layers.cast<Layers&>().animation == self)
                    return;
                LayerMap replacement = layers_of(layers);
                Layer::take_all_out(*self);
                self->layers = std::move(replacement);
            },
            doc_Animation_layers)
        .def(
            "__eq__", [](const Animation& a, const Animation& b) { return a == b; },
            py::is_operator())
        .def("__repr__", [](const Animation& self) { return repr(self); })
        .def("__str__", str<Animation>)
        .def(py::pickle([](const Animation& self) { return animation_to_json(self); },
                        [](const std::string& state) { return animation_from_json(state); }));
}

void bind_rotation(py::module_& m) {
    py::class_<Rotation, Animation, std::shared_ptr<Rotation>> type(m, "Rotation", doc_Rotation);
    bind_copies(type, [](const Rotation& self) { return same(self); });
    type.def(py::init([](double pulse, double rest, const Whole& rise, const Whole& fall,
                         const Whole& step) {
                 return Rotation(value("pulse_value", pulse), value("rest_value", rest),
                                 value("rise_duration", rise), value("fall_duration", fall),
                                 value("step_duration", step));
             }),
             "pulse_value"_a, "rest_value"_a, "rise_duration"_a, "fall_duration"_a,
             "step_duration"_a, doc_Rotation_Rotation)
        .def_readonly("pulse_value", &Rotation::pulseValue, doc_Rotation_pulseValue)
        .def_readonly("rest_value", &Rotation::restValue, doc_Rotation_restValue)
        .def_readonly("rise_duration", &Rotation::riseDuration, doc_Rotation_riseDuration)
        .def_readonly("fall_duration", &Rotation::fallDuration, doc_Rotation_fallDuration)
        .def_readonly("step_duration", &Rotation::stepDuration, doc_Rotation_stepDuration)
        .def(
            "__eq__", [](const Rotation& a, const Rotation& b) { return a == b; },
            py::is_operator())
        .def("__repr__", [](const Rotation& self) { return repr(self); })
        .def(py::pickle(
            [](const Rotation& self) {
                return py::make_tuple(self.pulseValue, self.restValue, self.riseDuration,
                                      self.fallDuration, self.stepDuration,
                                      animation_to_json(self));
            },
            [](const py::tuple& state) {
                Rotation result(state[0].cast<float>(), state[1].cast<float>(),
                                state[2].cast<unsigned int>(), state[3].cast<unsigned int>(),
                                state[4].cast<unsigned int>());
                static_cast<Animation&>(result) = animation_from_json(state[5].cast<std::string>());
                return result;
            }));
}

} // namespace

PYBIND11_MODULE(animationmodel, m) {
    m.doc() = "Key-frame animations as data: layers of keys, built, edited, looped, cut and split.";
    bind_keys(m);
    bind_layers(m);
    AnimationClass animation(m, "Animation", doc_Animation);
    bind_values(animation);
    bind_questions(animation);
    bind_edits(animation);
    bind_results(animation);
    bind_rotation(m);
    refuse_unmade<Key>();
    refuse_unmade<Layer>();
    refuse_unmade<Layers>();
    refuse_unmade<Animation>();
    refuse_unmade<Rotation>();
}
