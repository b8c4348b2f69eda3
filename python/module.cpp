// The values and operations of animations for Python. The classes of the package, which are written
// in Python, build on these: they check and name the arguments, and add what Python expects
// besides.

#include "Picture.h"
#include "values.h"

#include <animationmodel/Rotation.h>
#include <animationmodel/play.h>
#include <animationmodel/retime.h>

#include <pybind11/numpy.h>

#include <set>
#include <sstream>
#include <tuple>

namespace {

template <class Type>
std::string str(const Type& value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

/// What Python reads as the same float.
std::string repr(float value) {
    const std::string text = shortest_text(value);
    if (!std::isfinite(value))
        return "float('" + text + "')";
    return text == "-0" ? "-0.0" : text; // -0 is an int
}

PyObject* effects = nullptr; ///< Python's, a tuple, by their numbers.

py::object new_key(PyTypeObject* type, PyObject* args, PyObject* named) {
    const char* names[] = {"effect", "args", "duration", nullptr};
    PyObject* given[3] = {};
    if (PyArg_ParseTupleAndKeywords(args, named, "OOO:Key", const_cast<char**>(names), &given[0],
                                    &given[1], &given[2]) == 0)
        throw py::error_already_set();
    const auto effect = effect_of(given[0]);
    std::vector<float> values;
    for_each("args", "numbers", given[1], [&](py::handle value, py::ssize_t index) {
        values.push_back(number(place_of("args", index), value));
    });
    const auto duration = static_cast<unsigned int>(whole("duration", given[2], 1, UINT_MAX));
    try {
        return KeyObject::make({AnimationKeyCommand(effect, values), duration}, type);
    } catch (const std::invalid_argument& error) {
        refuse<py::value_error>(std::string("args: ") + error.what());
    }
}

py::object compare_keys(PyObject* self, PyObject* other, int operation) {
    const AnimationKey* key = KeyObject::in(other);
    if (key == nullptr || (operation != Py_EQ && operation != Py_NE))
        return py::reinterpret_borrow<py::object>(Py_NotImplemented);
    return py::bool_((*KeyObject::in(self) == *key) == (operation == Py_EQ));
}

py::object effect_in(PyObject* self, void* /*none*/) {
    const auto effect = static_cast<std::int32_t>(KeyObject::in(self)->command.effect);
    if (effect < Transition || effect > Wait)
        return py::int_(effect);
    return py::reinterpret_borrow<py::object>(PyTuple_GET_ITEM(effects, effect));
}

py::object args_in(PyObject* self, void* /*none*/) {
    return py::tuple(py::cast(std::vector<float>(KeyObject::in(self)->command.args)));
}

py::object duration_in(PyObject* self, void* /*none*/) {
    return py::int_(KeyObject::in(self)->duration);
}

py::object str_of_key(PyObject* self) {
    return py::str(str(*KeyObject::in(self)));
}

void bind_keys(py::module_& m) {
    static PyGetSetDef members[] = {
        {"effect", Direct<effect_in>::call, nullptr, "What a layer does meanwhile.", nullptr},
        {"args", Direct<args_in>::call, nullptr, "The values for it.", nullptr},
        {"duration", Direct<duration_in>::call, nullptr, "Frames.", nullptr},
        {}};
    PyTypeObject& type = KeyObject::type;
    type.tp_doc = "Key(effect, args, duration)\n--\n\n"; // the signature
    type.tp_new = Direct<new_key>::call;
    type.tp_richcompare = Direct<compare_keys>::call;
    type.tp_str = Direct<str_of_key>::call;
    type.tp_getset = members;
    m.attr("Key") = KeyObject::ready("animationmodel._core.Key");
    m.def("split_key_at", &AnimationKey::splitAt);
    m.def("split_key_each", &AnimationKey::splitEach);
}

/// The index in `layer` that an index of Python's means, which may count from the end.
py::ssize_t index_in(const Layer& layer, PyObject* given) {
    if (PyIndex_Check(given) == 0)
        refuse("an index of " + place_of(layer.name), "an int or a slice", given);
    const py::ssize_t nearest = PyNumber_AsSsize_t(given, nullptr);
    if (PyErr_Occurred() != nullptr)
        throw py::error_already_set();
    const py::ssize_t size = std::ssize(layer.keys());
    const py::ssize_t index = nearest < 0 ? nearest + size : nearest;
    if (index < 0 || index >= size)
        refuse<py::index_error>(place_of(layer.name) + " has " + std::to_string(size) +
                                " keys, none of index " + std::to_string(nearest));
    return index;
}

struct Slice {
    py::ssize_t start = 0;
    py::ssize_t stop = 0;
    py::ssize_t step = 0;
    py::ssize_t count = 0;

    Slice(const Layer& layer, PyObject* given) {
        if (PySlice_Unpack(given, &start, &stop, &step) != 0)
            throw py::error_already_set();
        count = PySlice_AdjustIndices(std::ssize(layer.keys()), &start, &stop, step);
    }
};

// What runs Python, such as an __index__, may change the layer: it comes before its keys are looked
// up.

py::object item(PyObject* self, PyObject* index) {
    const Layer& layer = *Object<Layer>::in(self);
    if (!PySlice_Check(index)) {
        const py::ssize_t at = index_in(layer, index);
        return KeyObject::make(layer.keys()[at]);
    }
    const Slice slice(layer, index);
    KeyVector keys;
    for (py::ssize_t i = 0; i < slice.count; ++i)
        keys.push_back(layer.keys()[slice.start + i * slice.step]);
    return py::cast(keys);
}

/// Puts `given` in the place of a key or a slice; without it takes that out.
int set_item(PyObject* self, PyObject* index, PyObject* given) {
    const Layer& layer = *Object<Layer>::in(self);
    if (!PySlice_Check(index)) {
        const py::ssize_t at = index_in(layer, index);
        KeyVector& keys = layer.keys();
        if (given == nullptr)
            keys.erase(keys.begin() + at);
        else
            keys[at] = key_of(place_of(place_of(layer.name), at), given);
        return 0;
    }
    const KeyVector others = given != nullptr ? keys_of("keys", given) : KeyVector();
    const Slice slice(layer, index);
    if (slice.step != 1) { // as a list does
        const py::object list = py::cast(layer.keys());
        const py::object items = py::cast(others);
        if ((given != nullptr ? PyObject_SetItem(list.ptr(), index, items.ptr())
                              : PyObject_DelItem(list.ptr(), index)) != 0)
            throw py::error_already_set();
        layer.keys() = keys_of("keys", list);
        return 0;
    }
    KeyVector& keys = layer.keys();
    const py::ssize_t common = std::min(slice.count, std::ssize(others));
    const auto rest = keys.begin() + slice.start + common;
    if (slice.count > common)
        keys.erase(rest, rest + (slice.count - common));
    else
        keys.insert(rest, others.begin() + common, others.end());
    std::copy_n(others.begin(), common, keys.begin() + slice.start);
    return 0;
}

py::ssize_t length(PyObject* self) {
    return std::ssize(Object<Layer>::in(self)->keys());
}

/// A loop over a layer. Like one over a list it looks up each key when it comes to it.
struct Loop {
    Layer layer;
    py::ssize_t index = 0;
};

py::object loop(PyObject* self) {
    return Object<Loop>::make({*Object<Layer>::in(self)});
}

py::object next_key(PyObject* self) {
    auto& [layer, index] = *Object<Loop>::in(self);
    const KeyVector& keys = layer.keys();
    return index < std::ssize(keys) ? KeyObject::make(keys[index++]) : py::object();
}

py::object new_layer(PyTypeObject* type, PyObject* args, PyObject* /*named*/) {
    const auto [animation, name] =
        py::handle(args).cast<std::pair<std::shared_ptr<Animation>, std::string>>();
    const Layer layer{animation, name};
    layer.keys(); // has to be there
    return Object<Layer>::make(layer, type);
}

void bind_layers(py::module_& m) {
    PyTypeObject& loops = Object<Loop>::type;
    loops.tp_iter = PyObject_SelfIter;
    loops.tp_iternext = Direct<next_key>::call;
    Object<Loop>::ready("animationmodel._core.Loop");

    static PyMappingMethods items{Direct<length>::call, Direct<item>::call, Direct<set_item>::call};
    PyTypeObject& type = Object<Layer>::type;
    type.tp_new = Direct<new_layer>::call;
    type.tp_iter = Direct<loop>::call;
    type.tp_as_mapping = &items;
    m.attr("Layer") = Object<Layer>::ready("animationmodel._core.Layer");
}

/// A copy as Python means it, neither filled nor checked.
Animation same(const Animation& animation) {
    Animation copy(1);
    copy.layers = animation.layers;
    copy.introSize = animation.introSize;
    copy.outroSize = animation.outroSize;
    copy.fps = animation.fps;
    return copy;
}

/// Samples a copy, while other threads of Python go on and may edit the animation.
py::array_t<float> sampled(const Animation& animation, unsigned int start, unsigned int count) {
    const LayerMap layers = animation.layers;
    py::array_t<float> values({std::size_t{count}, layers.size()});
    float* const place = values.mutable_data();
    {
        const py::gil_scoped_release released;
        sample(layers, start, count, place);
    }
    return values;
}

void bind_animations(py::module_& m) {
    using Keys = void (Animation::*)(const std::string&, const KeyVector&);
    using KeysAt = void (Animation::*)(const std::string&, const KeyVector&, unsigned int);
    using KeysFor =
        void (Animation::*)(const std::string&, unsigned int, unsigned int, const KeyVector&);
    py::class_<Animation, std::shared_ptr<Animation>>(m, "Animation")
        .def(py::init([](LayerMap layers, unsigned int intro, unsigned int outro, float fps) {
            Animation parts(1);
            parts.layers = std::move(layers);
            parts.introSize = intro;
            parts.outroSize = outro;
            parts.fps = fps;
            return Animation(parts); // fills and checks
        }))
        .def_readwrite("intro_size", &Animation::introSize)
        .def_readwrite("outro_size", &Animation::outroSize)
        .def_readwrite("fps", &Animation::fps)
        .def("names",
             [](const Animation& self) {
                 std::vector<std::string> names;
                 for (const auto& [name, keys] : self.layers)
                     names.push_back(name);
                 return names;
             })
        .def("put_layers",
             [](Animation& self, LayerMap layers) {
                 layers.merge(self.layers);
                 self.layers.swap(layers);
             })
        .def("set_layers", [](Animation& self, LayerMap layers) { self.layers.swap(layers); })
        .def("erase_layer",
             [](Animation& self, const std::string& name) { return self.layers.erase(name) != 0; })
        .def("has_layer", &Animation::hasLayer)
        .def("empty", &Animation::empty)
        .def("duration_in_frames", py::overload_cast<>(&Animation::durationInFrames, py::const_))
        .def("outro_start_frame", &Animation::outroStartFrame)
        .def("duration_in_seconds", &Animation::durationInSeconds)
        .def("simulated_duration_in_seconds", &Animation::simulatedDurationInSeconds)
        .def("fill_in_layer", &Animation::fillInLayer)
        .def("replace_in_layer", KeysFor(&Animation::replaceInLayer))
        .def("insert_in_layer", KeysAt(&Animation::insertInLayer))
        .def("push_back_in_layer", Keys(&Animation::pushBackInLayer))
        .def("remove_in_layer", &Animation::removeInLayer)
        .def("override_layer_with", KeysAt(&Animation::overrideLayerWith))
        .def("replace", &Animation::replace)
        .def("insert", &Animation::insert)
        .def("push_back", &Animation::pushBack)
        .def("remove", &Animation::remove)
        .def("override_layers_with", &Animation::overrideLayersWith)
        .def("set_fps_to_fit_duration_in_seconds", &Animation::setFPSToFitDurationInSeconds)
        .def("change_frame_rate", change_frame_rate)
        .def("stretch_to", [](Animation& self, unsigned int frames) { stretch_to(self, frames); })
        .def("reset", &Animation::reset)
        .def("intro_body_outro_layers",
             [](const Animation& self) {
                 std::tuple<LayerMap, LayerMap, LayerMap> parts;
                 auto& [intro, body, outro] = parts;
                 self.introBodyOutroLayers(intro, body, outro);
                 return parts;
             })
        .def("loop", &Animation::loop)
        .def("split_at",
             py::overload_cast<std::set<unsigned int>, bool, bool>(&Animation::splitAt, py::const_))
        .def("split_each", &Animation::splitEach)
        .def("sample", sampled)
        .def("svg",
             [](const Animation& self, const std::string& title) { return svg_of(title, self); })
        .def("to_json", [](const Animation& self) { return animation_to_json(self); })
        .def("copy", same)
        .def("equals", [](const Animation& a, const Animation& b) { return a == b; })
        .def("__str__", str<Animation>);

    py::class_<Playhead>(m, "Playhead")
        .def(py::init<const Animation&>())
        .def("frame", &Playhead::frame)
        .def("ended", &Playhead::ended)
        .def("next", &Playhead::next)
        .def("finish", &Playhead::finish);
}

} // namespace

PYBIND11_MODULE(_core, m) {
    py::register_local_exception_translator([](std::exception_ptr thrown) {
        try {
            std::rethrow_exception(std::move(thrown));
        } catch (const std::invalid_argument& error) {
            py::value_error(json_file::begin_of(error.what())).set_error();
        }
    });
    bind_keys(m);
    bind_layers(m);
    bind_animations(m);
    m.attr("version") = ANIMATIONMODEL_VERSION;
    m.def("use", [](py::handle key, py::handle named_effects) {
        KeyObject::derived = reinterpret_cast<PyTypeObject*>(key.inc_ref().ptr());
        effects = named_effects.inc_ref().ptr();
    });
    m.def("whole", whole);
    m.def("number", number);
    m.def("text", text);
    m.def("refuse", [](const std::string& name, const std::string& needs, py::handle given) {
        refuse(name, needs, given);
    });
    m.def("repr", repr);
    m.def("rotation",
          [](float pulse, float rest, unsigned int rise, unsigned int fall,
             unsigned int step) -> Animation { return Rotation(pulse, rest, rise, fall, step); });
    m.def("from_json", [](std::string_view text) { return animation_from_json(text); });
    m.def("duration_of_layers", py::overload_cast<const LayerMap&>(&Animation::durationInFramesOf));
    m.def("duration_of_keys", py::overload_cast<const KeyVector&>(&Animation::durationInFramesOf));
    m.def("default_fps", [] { return Animation::defaultFps; });
    m.def("set_default_fps", [](float fps) { Animation::defaultFps = fps; });
}
