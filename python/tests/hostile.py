"""Calls everything with arguments that edit the animation while they are read, and with wrong ones.

    PYTHONMALLOC=debug script/python python/tests/hostile.py [CALLS [SEED]]

A call has to return, or to raise an error that Python programmers know, with a short text. What the
module must not do is crash, hang, or show what pybind11 has to say.
"""

import copy
import pickle
import random
import resource
import sys

import numpy
from animationmodel import Animation, Hold, Key, Layer, Layers, Rotation, Transition, Wait


class Mischief(Exception):
    """What an argument raises on purpose."""


class Late(Animation):
    def __init__(self):
        pass


class Hostile:
    """Whatever Python asks of it, it first edits the animation."""

    def __init__(self, program, answer):
        self.program = program
        self.answer = answer

    def _answer(self, *ignored):
        self.program.disturb()
        return self.answer

    __index__ = __float__ = __str__ = __len__ = _answer

    def __iter__(self):
        for _ in range(self.program.random.randrange(4)):
            self.program.disturb()
            yield self.program.key()

    def __getitem__(self, index):
        self.program.disturb()
        return [self.program.key()]

    def keys(self):
        self.program.disturb()
        return self.program.random.sample("abc", 2)

    def __eq__(self, other):
        self.program.disturb()
        return self.program.random.random() < 0.5

    def __hash__(self):
        return 1


class Program:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.depth = 0
        self.start()

    def start(self):
        self.show = Animation({"a": [Key(Hold, [1], 5)] * 3, "b": [Key(Transition, [0, 1], 7)]})
        self.held = [self.show.layers, self.show.layers["a"], iter(self.show.layers["b"])]

    def disturb(self):
        """Makes another call, which may disturb in turn, or raises."""
        if self.random.random() < 0.02:
            raise Mischief
        if self.depth < 3:
            self.call()

    def call(self):
        self.depth += 1
        try:
            self.random.choice(CALLS)(self)
        except (TypeError, ValueError, IndexError, KeyError) as error:
            text = str(error.args[0]) if type(error.args[0]) is str else "of another object"
            assert text or isinstance(error, KeyError)
            assert len(text) <= 200 and "Invoked" not in text and "pybind" not in text, text
        except (Mischief, StopIteration, MemoryError, OverflowError):
            pass
        finally:
            self.depth -= 1

    # Arguments, most of them right.

    def key(self):
        random = self.random
        if random.random() < 0.03:
            return random.choice([None, "key", 5, Hostile(self, 1)])
        return random.choice(
            [
                Key(Wait, [], random.randrange(1, 9)),
                Key(Hold, [random.random()], random.randrange(1, 9)),
                Key(Transition, [0, float("nan")], 3),
            ]
        )

    def keys(self):
        random = self.random
        return random.choice(
            [
                lambda: [self.key() for _ in range(random.randrange(4))],
                lambda: (self.key() for _ in range(random.randrange(4))),
                lambda: Hostile(self, 1),
                self.layer,
                self.key,
                lambda: iter(self.layer()),
                self.wrong,
            ]
        )()

    def layer(self):
        return self.random.choice([self.show.layers["a"], self.held[1]])

    def layers(self):
        random = self.random
        return random.choice(
            [
                lambda: {name: self.keys() for name in random.sample("abcd", 2)},
                lambda: self.show.layers,
                lambda: Hostile(self, 1),
                self.wrong,
            ]
        )()

    def name(self):
        return self.random.choice(["a", "a", "b", "c", "\0", "é" * 300, self.wrong()])

    def number(self):
        random = self.random
        return random.choice(
            [
                random.randrange(12),
                random.randrange(12),
                numpy.uint8(random.randrange(12)),
                Hostile(self, random.randrange(12)),
                self.wrong(),
            ]
        )

    def index(self):
        random = self.random
        whole = lambda: random.choice(
            [random.randrange(-9, 9), Hostile(self, random.randrange(-9, 9))]
        )
        if random.random() < 0.5:
            return random.choice([whole(), self.wrong()])
        part = lambda: random.choice([None, whole(), whole(), self.wrong()])
        return slice(part(), part(), random.choice([None, None, part()]))

    def flag(self):
        return self.random.choice([True, False, None, self.wrong()])

    def other(self):
        return self.random.choice(
            [self.show, copy.copy(self.show), Rotation(1, 0, 2, 1, 1), self.wrong()]
        )

    def wrong(self):
        return self.random.choice(
            [
                None,
                -1,
                2**31,
                2**32,
                2**70,
                -(2**70),
                10**400,
                1.5,
                float("nan"),
                float("inf"),
                "",
                "a",
                "\udcff",
                b"a",
                (),
                [],
                {},
                [5],
                ["a"],
                {5: 6},
                object(),
                Late.__new__(Late),
                Key,
                Hostile(self, "x"),
                Hostile(self, 2**40),
                numpy.zeros(3),
                "x" * 1000,
            ]
        )


def several(method, *arguments):
    """A call of a method of the animation, of an unmade one, or of something else."""

    def call(self):
        given = [getattr(self, argument)() for argument in arguments]
        if self.random.random() < 0.05:
            del given[self.random.randrange(len(given) + 1) :]
        subject = (
            self.show
            if self.random.random() < 0.97
            else self.random.choice([Late(), Late.__new__(Late)])
        )
        getattr(subject, method)(*given)

    return call


def of_layer(method, *arguments):
    def call(self):
        result = getattr(self.layer(), method)(
            *(getattr(self, argument)() for argument in arguments)
        )
        if self.random.random() < 0.1 and hasattr(result, "__next__"):
            list(result)

    return call


def of_layers(method, *arguments):
    def call(self):
        layers = self.random.choice([self.show.layers, self.held[0]])
        getattr(layers, method)(*(getattr(self, argument)() for argument in arguments))

    return call


def member(name, argument):
    return lambda self: setattr(self.show, name, getattr(self, argument)())


def hold(self):
    index = self.random.randrange(3)
    self.held[index] = [lambda: self.show.layers, self.layer, lambda: iter(self.layer())][index]()


def sort(self):
    self.layer().sort(key=lambda key: (self.disturb(), self.random.random())[1])


def again(self):
    if self.random.random() < 0.05:
        self.start()


CALLS = [
    several("insert_in_layer", "name", "keys", "number"),
    several("replace_in_layer", "name", "number", "number", "keys"),
    several("push_back_in_layer", "name", "keys"),
    several("remove_in_layer", "name", "number", "number"),
    several("fill_in_layer", "name", "number"),
    several("override_layer_with", "name", "keys", "number"),
    several("insert", "other", "number"),
    several("replace", "number", "number", "other"),
    several("push_back", "other", "flag", "flag"),
    several("remove", "number", "number"),
    several("override_layers_with", "other", "number"),
    several("loop", "number", "flag", "flag"),
    several("split_at", "number", "flag", "flag"),
    several("split_at", "keys", "flag", "flag"),
    several("stretch_to", "number"),
    several("change_frame_rate", "number"),
    several("split_each", "number", "flag", "flag"),
    several("sample", "number", "number"),
    several("layer", "name"),
    several("has_layer", "name"),
    several("simulated_duration_in_seconds", "number"),
    several("set_fps_to_fit_duration_in_seconds", "number"),
    several("intro_body_outro_layers"),
    several("to_json"),
    several("svg", "name"),
    several("__repr__"),
    several("__eq__", "other"),
    several("__copy__"),
    several("__init__", "layers", "number", "number", "number"),
    several("__setstate__", "wrong"),
    of_layer("__getitem__", "index"),
    of_layer("__setitem__", "index", "key"),
    of_layer("__setitem__", "index", "keys"),
    of_layer("__delitem__", "index"),
    of_layer("insert", "index", "key"),
    of_layer("append", "key"),
    of_layer("extend", "keys"),
    of_layer("pop", "index"),
    of_layer("remove", "key"),
    of_layer("index", "key", "index"),
    of_layer("count", "key"),
    of_layer("__contains__", "wrong"),
    of_layer("__add__", "keys"),
    of_layer("__mul__", "flag"),
    of_layer("__iadd__", "keys"),
    of_layer("reverse"),
    of_layer("copy"),
    of_layer("__eq__", "keys"),
    of_layer("__iter__"),
    of_layer("__reversed__"),
    of_layers("__getitem__", "name"),
    of_layers("__setitem__", "name", "keys"),
    of_layers("__delitem__", "name"),
    of_layers("__contains__", "name"),
    of_layers("pop", "name", "wrong"),
    of_layers("popitem"),
    of_layers("setdefault", "name", "keys"),
    of_layers("update", "layers"),
    of_layers("__or__", "layers"),
    of_layers("__eq__", "layers"),
    member("layers", "layers"),
    member("intro_size", "number"),
    member("outro_size", "number"),
    member("fps", "number"),
    lambda self: Animation(self.layers(), self.number(), self.number(), self.number()),
    lambda self: Animation.duration_in_frames_of(self.random.choice([self.layers, self.keys])()),
    lambda self: Key(self.number(), self.keys(), self.number()),
    lambda self: Key(Hold, [self.number()], self.number()).split_each(self.number()),
    lambda self: Key(Hold, [1], 5).replace(duration=self.number()),
    lambda self: next(self.held[2]),
    lambda self: pickle.loads(pickle.dumps(self.random.choice([self.show, self.layer()]))),
    lambda self: copy.deepcopy(self.random.choice([self.show, self.held[0], self.key()])),
    lambda self: Layer(self.wrong(), self.name()),
    lambda self: Layers(self.wrong())[self.name()],
    hold,
    sort,
    again,
]


def main(calls=100_000, seed=1):
    resource.setrlimit(resource.RLIMIT_AS, (2**30, 2**30))  # too much is soon a MemoryError
    program = Program(seed)
    for _ in range(calls):
        program.call()
        if program.show.duration_in_frames() > 10_000 or len(program.show.layers) > 20:
            program.start()
    print(f"{calls} calls from seed {seed}: all came back")


if __name__ == "__main__":
    main(*map(int, sys.argv[1:]))
