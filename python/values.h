#pragma once

#include "objects.h"

#include <animationmodel/json.h>

#include <pybind11/stl.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

// What Python gives, as values of C++. What stands for no such value is refused with the name of
// what it was given for.

using namespace Kiv;
using KeyObject = Object<AnimationKey>;

template <class Error>
[[noreturn]] void refuse(const std::string& text) {
    throw Error(json_file::begin_of(text));
}

[[noreturn]] inline void refuse(const std::string& name, const std::string& needs,
                                py::handle given) {
    const std::string type = Py_TYPE(given.ptr())->tp_name;
    const char* article = std::strchr("AEIOUaeiou", type[0]) != nullptr ? "an " : "a ";
    refuse<py::type_error>(name + " needs " + needs + ", not " +
                           (given.is_none() ? "None" : article + type));
}

inline std::string place_of(const std::string& layer) {
    return "layers[\"" + layer + "\"]";
}

inline std::string place_of(const std::string& list, py::ssize_t index) {
    return list + "[" + std::to_string(index) + "]";
}

inline long long whole(const std::string& name, py::handle given, long long least, long long most) {
    if (PyIndex_Check(given.ptr()) == 0)
        refuse(name, "an int", given);
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(given.ptr()));
    if (!number)
        throw py::error_already_set();
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow != 0 || value < least || value > most)
        refuse<py::value_error>(name + " has to be " + std::to_string(least) + " to " +
                                std::to_string(most) +
                                (overflow != 0 ? "" : ", not " + std::to_string(value)));
    return value;
}

inline float number(const std::string& name, py::handle given) {
    const PyNumberMethods* methods = Py_TYPE(given.ptr())->tp_as_number;
    if (methods == nullptr || (methods->nb_float == nullptr && methods->nb_index == nullptr))
        refuse(name, "a number", given);
    double value = PyFloat_AsDouble(given.ptr());
    if (PyErr_Occurred() != nullptr) {
        if (PyErr_ExceptionMatches(PyExc_OverflowError) == 0)
            throw py::error_already_set();
        PyErr_Clear();
        value = DBL_MAX; // or more, an int of hundreds of digits
    }
    const auto nearest = static_cast<float>(value);
    if (std::isinf(nearest) && !std::isinf(value))
        refuse<py::value_error>(name + " has to be within the range of 32-bit floats");
    return nearest;
}

inline std::string text(const std::string& name, py::handle given) {
    if (PyUnicode_Check(given.ptr()) == 0)
        refuse(name, "a str", given);
    py::ssize_t size = 0;
    const char* begin = PyUnicode_AsUTF8AndSize(given.ptr(), &size);
    if (begin == nullptr)
        throw py::error_already_set();
    return {begin, static_cast<std::size_t>(size)};
}

inline AnimationKeyCommandEffect effect_of(py::handle given) {
    if (PyIndex_Check(given.ptr()) != 0)
        return static_cast<AnimationKeyCommandEffect>(whole("effect", given, INT_MIN, INT_MAX));
    if (PyUnicode_Check(given.ptr()) == 0)
        refuse("effect", "an Effect, its name or an int", given);
    const auto& names = json_file::effects;
    const auto* found = std::find(std::begin(names), std::end(names), text("effect", given));
    if (found == std::end(names))
        refuse<py::value_error>("effect has to be Transition, Hold, NoValue, Wait or an int, not " +
                                py::repr(given).cast<std::string>());
    return static_cast<AnimationKeyCommandEffect>(found - std::begin(names));
}

/// A layer, looked up by its name whenever it is used: no edit leaves it with keys that are gone.
struct Layer {
    std::shared_ptr<Animation> animation;
    std::string name;

    KeyVector& keys() const {
        const auto found = animation->layers.find(name);
        if (found == animation->layers.end())
            refuse<py::key_error>(name);
        return found->second;
    }
};

/// Calls `visit` with each value and its index.
template <class Visit>
void for_each(const std::string& name, const char* needs, py::handle given, const Visit& visit) {
    if (Py_TYPE(given.ptr())->tp_iter == nullptr && PySequence_Check(given.ptr()) == 0)
        refuse(name, needs, given);
    py::ssize_t index = 0;
    for (const py::handle value : py::reinterpret_borrow<py::object>(given))
        visit(value, index++);
}

inline AnimationKey key_of(const std::string& name, py::handle given) {
    const AnimationKey* key = KeyObject::in(given);
    if (key == nullptr)
        refuse(name, "a Key", given);
    return *key;
}

inline KeyVector keys_of(const std::string& name, py::handle given) {
    if (const Layer* layer = Object<Layer>::in(given))
        return layer->keys();
    KeyVector keys;
    for_each(name, "keys", given, [&](py::handle value, py::ssize_t index) {
        const AnimationKey* key = KeyObject::in(value);
        keys.push_back(key != nullptr ? *key : key_of(place_of(name, index), value));
    });
    return keys;
}

namespace pybind11::detail {

template <>
struct type_caster<AnimationKey> {
    static constexpr auto name = const_name("Key");
    template <class Type>
    using cast_op_type = detail::cast_op_type<Type>;
    operator AnimationKey*() { return value; }
    operator AnimationKey&() { return *value; }

    bool load(handle source, bool /*convert*/) {
        return (value = KeyObject::in(source)) != nullptr;
    }
    static handle cast(const AnimationKey& key, return_value_policy /*policy*/, handle /*parent*/) {
        return KeyObject::make(key).release();
    }

    AnimationKey* value = nullptr;
};

/// What an operation takes as keys: one is some, too.
template <>
struct type_caster<KeyVector> : list_caster<KeyVector, AnimationKey> {
    bool load(handle source, bool /*convert*/) {
        const AnimationKey* one = KeyObject::in(source);
        value = one != nullptr ? KeyVector{*one} : keys_of("keys", source);
        return true;
    }
};

template <>
struct type_caster<LayerMap> : map_caster<LayerMap, std::string, KeyVector> {
    bool load(handle source, bool /*convert*/) {
        if (!hasattr(source, "keys"))
            refuse("layers", "a dict", source);
        const dict items; // of its own: what is iterated below cannot change it
        if (PyDict_Update(items.ptr(), source.ptr()) != 0)
            throw error_already_set();
        for (const auto& [name, keys] : items) {
            const std::string layer = text("each name in layers", name);
            value[layer] = keys_of(place_of(layer), keys);
        }
        return true;
    }
};

} // namespace pybind11::detail
