#pragma once

#include <pybind11/pybind11.h>

#include <new>
#include <type_traits>
#include <utility>

// Python objects that cost as little as Python's own. To make one takes a fifth of the time that
// one of a class of pybind11's takes, and so does what Python does with it.

namespace py = pybind11;

/// `function` as Python calls it: what it throws is raised. What it returns is an object or, where
/// Python asks for that, a number.
template <auto function>
struct Direct;

template <class Result, class... Given, Result (*function)(Given...)>
struct Direct<function> {
    static constexpr bool returnsObject = std::is_same_v<Result, py::object>;
    using Raw = std::conditional_t<returnsObject, PyObject*, Result>;

    static Raw call(Given... given) noexcept {
        try {
            if constexpr (returnsObject)
                return function(given...).release().ptr();
            else
                return function(given...);
        } catch (py::error_already_set& error) {
            error.restore();
        } catch (const py::builtin_exception& error) {
            error.set_error();
        } catch (const std::bad_alloc&) {
            PyErr_NoMemory();
        }
        if constexpr (returnsObject)
            return nullptr;
        else
            return -1;
    }
};

/// An object that is a C++ value.
template <class Value>
struct Object {
    PyObject head;
    Value value;

    static inline PyTypeObject type{};           ///< What Python does with them.
    static inline PyTypeObject* derived = &type; ///< What is made where nothing else is said.

    /// The value in an object; null if the object is of another type.
    static Value* in(py::handle object) {
        const bool fits = PyObject_TypeCheck(object.ptr(), &type) != 0;
        return fits ? &reinterpret_cast<Object*>(object.ptr())->value : nullptr;
    }

    static py::object make(Value value, PyTypeObject* as = derived) {
        auto made = py::reinterpret_steal<py::object>(as->tp_alloc(as, 0));
        if (!made)
            throw py::error_already_set();
        new (in(made)) Value(std::move(value));
        return made;
    }

    /// Completes the type, once its functions are set.
    static py::handle ready(const char* name) {
        const auto made = reinterpret_cast<PyObject*>(&type);
        Py_SET_REFCNT(made, 1); // it is never destroyed
        type.tp_name = name;
        type.tp_basicsize = sizeof(Object);
        type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE;
        type.tp_dealloc = destroy;
        if (PyType_Ready(&type) != 0)
            throw py::error_already_set();
        return made;
    }

private:
    static void destroy(PyObject* self) {
        in(self)->~Value();
        Py_TYPE(self)->tp_free(self);
    }
};
