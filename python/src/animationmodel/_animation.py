from __future__ import annotations

import base64
import copy
import copyreg
import os
import pathlib
from collections.abc import Callable, Iterable, Mapping
from typing import TYPE_CHECKING, Any, Generic, SupportsIndex, TypeVar, Union, cast, overload

from . import _core
from ._arguments import Number, value_of, whole
from ._keys import Key
from ._layers import MOST_SHOWN, Layer, Layers

if TYPE_CHECKING:
    import numpy
    import numpy.typing

Self = TypeVar("Self", bound="Animation")
Kept = TypeVar("Kept")
Given = TypeVar("Given", contravariant=True)
Keys = Union[Key, Iterable[Key]]


class Member(Generic[Kept, Given]):
    """A property that takes other types than it gives, which type checkers deny `property`."""

    def __init__(
        self, get: Callable[[Animation], Kept], set: Callable[[Animation, Given], None], doc: str
    ) -> None:
        self._get = get
        self._set = set
        self.__doc__ = doc

    @overload
    def __get__(self, animation: None, owner: type) -> Member[Kept, Given]:
        ...

    @overload
    def __get__(self, animation: Animation, owner: type) -> Kept:
        ...

    def __get__(self, animation: Animation | None, owner: type) -> Member[Kept, Given] | Kept:
        return self if animation is None else self._get(animation)

    def __set__(self, animation: Animation, given: Given) -> None:
        self._set(animation, given)


def number_member(name: str, take: Callable[[str, Given], Kept], doc: str) -> Member[Kept, Given]:
    """The member of the C++ object; what is given for it is taken by that function."""
    return Member(
        lambda animation: cast(Kept, getattr(animation._value, name)),
        lambda animation, given: setattr(animation._value, name, take(name, given)),
        doc,
    )


class DefaultFps(type):
    """Gives the class Animation the default_fps of the C++ class."""

    @property
    def default_fps(cls) -> float:
        """The frame rate, 25 at first, that `reset` and animations made without one take."""
        return _core.default_fps()

    @default_fps.setter
    def default_fps(cls, fps: float) -> None:
        _core.set_default_fps(_core.number("default_fps", fps))


class Animation(metaclass=DefaultFps):
    """Named layers of keys that play side by side from frame 0, one layer per output channel.

        a | A A A A | B B B B B B |     the duration is that of the longest layer: 10 frames
        b | C C C C C C | ~ ~ ~ ~ |     ~ a Wait key that fills a shorter layer
          | intro|         | outro|     intro_size 3 from the start, outro_size 3 from the end
          0      3         7      10    ranges are half-open: the outro is frames 7, 8 and 9

    >>> lamp = Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]}, intro_size=10)
    >>> lamp.insert_in_layer("lamp", Key(Hold, [0.5], 5), 16)
    >>> lamp.layer("lamp")[1:]
    [Key(Hold, [1], 6), Key(Hold, [0.5], 5), Key(Hold, [1], 14)]
    >>> lamp.loop(3, repeat_intro=False, repeat_outro=False).duration_in_frames()
    85

    A new animation has copies of `layers`, a dict of keys by name, and plays at `fps` frames per
    second. If none are given, that is `Animation.default_fps`, which is 25 and can be set. Shorter
    layers are filled up to the duration with one Wait key each. Raises ValueError if the frame rate
    is 0 or less, if a layer lasts 2^31 frames or more, or if intro and outro together are longer
    than the animation. An edit does not do so for the animation that it edits: afterwards layers
    may differ in length, and the sizes may not fit.

    Frames are whole numbers, counted from 0; values are 32-bit floats. Every edit either succeeds
    or raises an error and changes nothing. Its arguments may be parts of the animation itself: they
    count as they were before the call. `copy.copy` and `copy.deepcopy` give an animation that is
    exactly the same and shares no layer.
    """

    __slots__ = ("_made",)
    __hash__ = None  # type: ignore[assignment]
    _made: _core.Animation

    layers = Member[Layers, Mapping[str, Iterable[Key]]](
        Layers,
        lambda animation, layers: animation._value.set_layers(layers),
        "The layers by name, a view. A dict that is assigned takes the place of them all.",
    )
    intro_size = number_member("intro_size", whole, "Frames of the intro, from frame 0.")
    outro_size = number_member("outro_size", whole, "Frames of the outro, back from the end.")
    fps = number_member("fps", _core.number, "Frames per second.")

    def __init__(
        self,
        layers: Mapping[str, Iterable[Key]] | None = None,
        intro_size: SupportsIndex = 0,
        outro_size: SupportsIndex = 0,
        fps: Number | None = None,
    ) -> None:
        self._made = _core.Animation(
            {} if layers is None else layers,
            whole("intro_size", intro_size),
            whole("outro_size", outro_size),
            _core.default_fps() if fps is None else _core.number("fps", fps),
        )

    @property
    def _value(self) -> _core.Animation:
        try:
            return self._made
        except AttributeError:
            raise TypeError("Animation.__init__() has to be called first") from None

    # Questions

    def names(self) -> list[str]:
        """Returns the names of the layers in order, which are the columns of `sample`."""
        return self._value.names()

    def layer(self, name: str) -> list[Key]:
        """Returns a list of the keys of a layer. Raises KeyError if there is no such layer."""
        return Layer(self, name).copy()

    def has_layer(self, name: str) -> bool:
        """Returns whether there is a layer of that name, even an empty one."""
        return self._value.has_layer(_core.text("name", name))

    def empty(self) -> bool:
        """Returns whether no layer holds a key."""
        return self._value.empty()

    def duration_in_frames(self) -> int:
        """Returns the frames of the longest layer; 0 without keys."""
        return self._value.duration_in_frames()

    @staticmethod
    def duration_in_frames_of(layers: Mapping[str, Iterable[Key]] | Keys) -> int:
        """Returns the frames of the longest of `layers`, or of the keys of one; 0 without keys."""
        if isinstance(layers, Mapping):
            return _core.duration_of_layers(layers)
        return _core.duration_of_keys(layers)

    def outro_start_frame(self) -> int:
        """Returns the first frame of the outro: the duration minus `outro_size`.

        Without an outro that is the duration itself; 0 if the outro is longer than the animation.
        """
        return self._value.outro_start_frame()

    def duration_in_seconds(self) -> float:
        """Returns the seconds at `fps`, as an absolute value.

        An `fps` of 0 gives infinity, or NaN without keys.
        """
        return self._value.duration_in_seconds()

    def simulated_duration_in_seconds(self, fps: Number) -> float:
        """Returns the seconds at another frame rate. Raises ValueError if that is 0 or less."""
        return self._value.simulated_duration_in_seconds(_core.number("fps", fps))

    def sample(
        self, start: SupportsIndex = 0, count: SupportsIndex | None = None
    ) -> numpy.typing.NDArray[numpy.float32]:
        """Returns the values as numpy.float32, a row for each frame and a column for each layer.

        Takes the frames from `start` on, `count` of them or all; `names` gives the columns. The
        value on a frame is the one that the layer, cut there, begins with. It is NaN where there is
        none: on a Wait, a NoValue, an effect without a name and past the end.
        """
        import numpy  # first, as threads that sample together would wait for each other

        first = whole("start", start)
        rest = max(self._value.duration_in_frames() - first, 0)
        frames = rest if count is None else whole("count", count)
        whole("start + count", first + frames)
        return self._value.sample(first, frames)

    # Edits of one layer

    def fill_in_layer(self, name: str, frames: SupportsIndex) -> None:
        """Appends one Wait key that makes the layer last `frames` frames.

            before  | A A A A |                          fill_in_layer("led", 7)
            after   | A A A A | ~ ~ ~ |

        Nothing happens to a layer that lasts as long or longer. A missing layer is created.
        """
        self._value.fill_in_layer(_core.text("name", name), whole("frames", frames))

    def replace_in_layer(
        self, name: str, start: SupportsIndex, count: SupportsIndex, keys: Keys
    ) -> None:
        """Puts `keys` in the place of the frames [start, start + count); what lay after them
        follows.

            before  | A A A A | B B B B B B |            replace_in_layer("led", 2, 5, X(3))
            after   | A A | X X X | B B B |

        This leaves what `remove_in_layer(name, start, count)` and `insert_in_layer(name, keys,
        start)` would. Keys that the range begins or ends inside are cut there. With a `count` of
        the total of `keys`, everything after them stays in its place. A range that reaches past the
        end goes to the end. If the layer ends before `start`, one Wait key fills it up to there
        first. Without `keys` nothing is filled. A missing layer is created.
        """
        self._value.replace_in_layer(
            _core.text("name", name), whole("start", start), whole("count", count), keys
        )

    def insert_in_layer(self, name: str, keys: Keys, frame: SupportsIndex) -> None:
        """Inserts `keys` at `frame`; what stood there follows them.

            before  | A A A A | B B B B B B |            insert_in_layer("led", X(3), 6)
            after   | A A A A | B B | X X X | B B B B |

        At frame 0 and on a boundary no key is cut. Past the end one Wait key fills the layer up to
        `frame` first. Without `keys` nothing happens, and no layer is created.
        """
        self._value.insert_in_layer(_core.text("name", name), keys, whole("frame", frame))

    def push_back_in_layer(self, name: str, keys: Keys) -> None:
        """Appends `keys` at the end of the layer, which is created if it is missing."""
        self._value.push_back_in_layer(_core.text("name", name), keys)

    def remove_in_layer(self, name: str, start: SupportsIndex, count: SupportsIndex) -> None:
        """Takes the frames [start, start + count) out of the layer; what lay after them moves up.

            before  | A A A A | B B B B B B |            remove_in_layer("led", 2, 5)
            after   | A A | B B B |

        A range that reaches past the end goes to the end. A `count` of 0 removes no frame, but
        still cuts the key that `start` falls inside. A missing layer is created empty.
        """
        self._value.remove_in_layer(
            _core.text("name", name), whole("start", start), whole("count", count)
        )

    def override_layer_with(self, name: str, keys: Keys, frame: SupportsIndex) -> None:
        """Lays `keys` over the layer from `frame` on; where they are Wait, the layer shows through.

            before  | A A A A | B B B B B B | C C C C C |
            keys    | ~ ~ ~ ~ | X X X X X X |              override_layer_with("led", keys, 0)
            after   | A A A A | X X X X X X | C C C C C |

        First one Wait key fills the layer up to the duration of the animation, or up to the total
        of `keys` if that is longer. Then each run of keys other than Wait is laid in its place. The
        key of the layer that the run begins inside is cut there. The key that it ends inside is
        not: it follows the run whole.

            before  | A A A A | B B B B B B |            override_layer_with("led", X(3), 2)
            after   | A A | X X X | B B B B B B |
                    0     2       5             11

        To keep B in its place, cut it beforehand: `remove_in_layer("led", 5, 0)`. A run that begins
        past the end begins there all the same, after one more Wait key.
        """
        self._value.override_layer_with(_core.text("name", name), keys, whole("frame", frame))

    # Edits of all layers

    def replace(self, start: SupportsIndex, count: SupportsIndex, other: Animation) -> None:
        """Puts `other` in the place of the frames [start, start + count): edits this animation.

            before  L | A A A A A A |         replace(2, 3, M = Y(2))
            after   L | A A | ~ ~ | A |
                    M | ~ ~ | Y Y |

        This leaves what `remove(start, count)` and `insert(other, start)` would, sizes included. So
        a layer that `other` lacks gets a Wait key in the place of the range: to replace frames of
        some layers alone, call `replace_in_layer` for each of them. An `other` without keys only
        removes the range; with a `count` of 0 it changes nothing. Raises ValueError, and changes
        nothing, for an `other` that cannot be filled as a new animation is. (`Key.replace`,
        however, returns a key.)
        """
        self._value.replace(whole("start", start), whole("count", count), value_of("other", other))

    def insert(self, other: Animation, frame: SupportsIndex) -> None:
        """Inserts `other` at `frame` into every layer, as `insert_in_layer` does.

            before  L | A A A A A A |         insert(M = Y(3), 4)
            after   L | A A A A | ~ ~ ~ | A A |
                    M | ~ ~ ~ ~ | Y Y Y |

        A layer that `other` lacks gets a Wait key in its place. A layer that only `other` has is
        created, with a Wait key up to `frame`.

        `intro_size` grows by the frames inserted if `frame` is less than it. `outro_size` grows if
        `frame` is greater than the outro's first frame, so at the very end if there is an outro,
        and past the end even without one. An `other` without keys changes nothing. Raises
        ValueError, and changes nothing, for an `other` that cannot be filled as a new animation is.
        """
        self._value.insert(value_of("other", other), whole("frame", frame))

    def push_back(self, other: Animation, keep_outro: bool, keep_intro: bool) -> None:
        """Appends `other`.

        First this animation without its outro unless `keep_outro`, then `other` without its intro
        unless `keep_intro`.

            this    | A A A A A | outro A A A |     other   | intro X | X X X X |
            after   | A A A A A | X X X X |         push_back(other, False, False)

        An outro or intro that is kept becomes part of the body. `outro_size` becomes that of
        `other`, even of one without keys. Raises ValueError, and changes nothing, for an `other`
        that cannot be filled as a new animation is.
        """
        self._value.push_back(value_of("other", other), bool(keep_outro), bool(keep_intro))

    def remove(self, start: SupportsIndex, count: SupportsIndex) -> None:
        """Takes the frames [start, start + count) out of every layer, and off the sizes.

            before  | A A A | B B B B B |              intro_size 3, remove(1, 4)
            after   | A | B B B |                      intro_size 1

        A `count` of 0, or a `start` at or past the end of the animation, changes nothing.
        """
        self._value.remove(whole("start", start), whole("count", count))

    def override_layers_with(self, other: Animation, frame: SupportsIndex) -> None:
        """Calls `override_layer_with` for each layer of `other`, in the order of their names.

            before  L | A A A A | B B B B |            override_layers_with(L = X(4) M = Y(2), 4)
            after   L | A A A A | X X X X |
                    M | ~ ~ ~ ~ | Y Y | ~ ~ ~ ~ |      the filler was cut, its rest moved

        Layers that are missing are created. The sizes stay.
        """
        self._value.override_layers_with(value_of("other", other), whole("frame", frame))

    def set_fps_to_fit_duration_in_seconds(self, seconds: Number) -> None:
        """Sets `fps` so that the animation lasts `seconds`.

        Raises ValueError if that is 0 or less.
        """
        self._value.set_fps_to_fit_duration_in_seconds(_core.number("seconds", seconds))

    def change_frame_rate(self, fps: Number) -> None:
        """Sets `fps`, and moves all ends of keys so that the animation lasts as many seconds as
        before.

        Each end, and those of intro and outro, goes to the frame that is nearest to its time. A key
        that is left without frames goes. At twice the rate and then at half of that again, an
        animation is what it was. Raises ValueError, and changes nothing, if either rate is not
        above 0 or not finite, or if a layer lasts 2^31 frames or more, before or after.
        """
        self._value.change_frame_rate(_core.number("fps", fps))

    def stretch_to(self, frames: SupportsIndex) -> None:
        """Moves all ends of keys so that the animation lasts `frames` frames. `fps` stays.

            before              | A | B B B | C C C C |
            stretch_to(3)       | B B | C |              the ends are at 0.375, 1.5 and 3

        Each end, and those of intro and outro, goes to the nearest frame. A key that is left
        without frames goes. Raises ValueError, and changes nothing, if `frames` is 0 for an
        animation with frames, or not 0 for one without any, or if a layer lasts 2^31 frames or
        more, before or after.
        """
        self._value.stretch_to(whole("frames", frames))

    def reset(self) -> None:
        """Goes back to no layers, sizes 0 and `default_fps`."""
        self._value.reset()

    # New animations

    def intro_body_outro_layers(
        self,
    ) -> tuple[dict[str, list[Key]], dict[str, list[Key]], dict[str, list[Key]]]:
        """Returns the layers of the intro, of the body and of the outro, as three dicts.

            layer   | A A A A | B B B B B B |      intro_size 3, outro_size 2
            parts   | A A A   | A | B B B B | B B |

        Keys across the intro's end or the outro's start are cut there. A layer that is shorter than
        the animation has less or nothing in the later parts.
        """
        return self._value.intro_body_outro_layers()

    def loop(self, count: SupportsIndex, repeat_intro: bool, repeat_outro: bool) -> Animation:
        """Returns an animation that plays the body `count` times between intro and outro.

        With `repeat_intro` and `repeat_outro` these come back around every body.

            this                   | intro | body | outro |
            loop(2, False, False)  | intro | body | body | outro |
            loop(2, True, True)    | intro | body | outro | intro | body | outro |
            loop(0, ...)           | intro | outro |

        The layers are filled as in a new animation; sizes and `fps` stay. Keys are cut where
        something repeats or is left out. Raises ValueError where a new animation does, and if the
        result would last 2^31 frames or more.
        """
        return made_of(
            self._value.loop(whole("count", count), bool(repeat_intro), bool(repeat_outro))
        )

    def split_at(
        self, frames: SupportsIndex | Iterable[SupportsIndex], keep_intro: bool, keep_outro: bool
    ) -> list[Animation]:
        """Returns the pieces before, between and after `frames`, one frame or several.

            before  | A A A A | B B B B B B |             split_at(6, ...)
            pieces  | A A A A | B B |       | B B B B |

        Keys across a cut are cut there. Each piece has the `fps` of this animation and every layer,
        with its own keys only: nothing is filled. At frame 0 the first piece has no frames, at or
        past the end the last one.

        With `keep_intro` the first piece that ends where the intro does, or later, is marked with
        it: its `intro_size` is the part of the intro that lies in it. With `keep_outro` the first
        piece that ends where the outro begins, or later, is marked with that. The last piece is
        never marked, and all other sizes are 0. Raises ValueError if `fps` is 0 or less.
        """
        if isinstance(frames, Iterable):
            cuts = {whole(f"frames[{index}]", frame) for index, frame in enumerate(frames)}
        else:
            cuts = {whole("frames", frames)}
        pieces = self._value.split_at(cuts, bool(keep_intro), bool(keep_outro))
        return list(map(made_of, pieces))

    def split_each(
        self, step: SupportsIndex, keep_intro: bool, keep_outro: bool
    ) -> list[Animation]:
        """Returns the pieces of cuts at 0, `step`, 2 x `step` and so on up to the duration.

            before  | A A A A | B B B B B B |             split_each(4, ...)
            pieces  |   | A A A A | B B B B | B B |

        Otherwise it is like `split_at`. The first piece is therefore always empty, and the last one
        too if `step` divides the duration. Raises ValueError if `step` or `fps` is 0 or less.
        """
        pieces = self._value.split_each(whole("step", step), bool(keep_intro), bool(keep_outro))
        return list(map(made_of, pieces))

    # Files and pictures

    def to_json(self) -> str:
        """Returns the animation as a text in JSON, a key a line."""
        return self._value.to_json()

    @staticmethod
    def from_json(text: str) -> Animation:
        """Returns the animation that a text in JSON describes, exactly as it was written.

        Raises ValueError, with the place and what is wrong there, if it describes none.
        """
        return made_of(_core.from_json(_core.text("text", text)))

    def save(self, path: str | os.PathLike[str]) -> None:
        """Writes the animation as JSON into a file."""
        pathlib.Path(path).write_bytes(self.to_json().encode())

    @staticmethod
    def load(path: str | os.PathLike[str]) -> Animation:
        """Returns the animation that a file in JSON describes; raises ValueError as `from_json`."""
        return Animation.from_json(pathlib.Path(path).read_bytes().decode())

    def svg(self, title: str = "Animation") -> str:
        """Returns a picture that plays the animation, above its timeline."""
        return self._value.svg(_core.text("title", title))

    def _repr_html_(self) -> str | None:
        if self._key_count() > 100 * MOST_SHOWN:
            return None
        picture = base64.b64encode(self.svg().encode()).decode()
        said = f"An animation of {self.duration_in_frames()} frames"
        return f'<img alt="{said}" src="data:image/svg+xml;base64,{picture}">'

    # What Python asks of every object

    def _key_count(self) -> int:
        return sum(map(len, self.layers.values()))

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Animation):
            return NotImplemented
        return self._value.equals(other._value)

    def __str__(self) -> str:
        return str(self._value)

    def __repr__(self) -> str:
        fps = _core.repr(self.fps)
        kind = type(self).__name__
        if self._key_count() > MOST_SHOWN:
            frames = self.duration_in_frames()
            return f"<{kind} of {len(self.layers)} layers, {frames} frames at {fps} fps>"
        sizes = f"intro_size={self.intro_size}, outro_size={self.outro_size}"
        return f"{kind}({self.layers!r}, {sizes}, fps={fps})"

    def _attributes(self) -> dict[str, Any]:
        """What an object of a subclass has besides."""
        return dict(getattr(self, "__dict__", {}))

    def __reduce__(self) -> tuple[Any, ...]:
        state = self._value.to_json(), self._attributes()
        return copyreg.__newobj__, (type(self),), state  # type: ignore[attr-defined]

    def __setstate__(self, state: tuple[str | _core.Animation, dict[str, Any]]) -> None:
        value, attributes = state
        if not isinstance(value, _core.Animation):
            value = _core.from_json(_core.text("state", value))
        self._made = value
        for name, attribute in dict(attributes).items():
            setattr(self, name, attribute)

    def __copy__(self: Self) -> Self:
        made = type(self).__new__(type(self))
        made.__setstate__((self._value.copy(), self._attributes()))
        return made

    def __deepcopy__(self: Self, memo: dict[int, Any]) -> Self:
        made = memo[id(self)] = type(self).__new__(type(self))
        made.__setstate__((self._value.copy(), copy.deepcopy(self._attributes(), memo)))
        return made


def made_of(value: _core.Animation) -> Animation:
    animation = Animation.__new__(Animation)
    animation._made = value
    return animation


class Rotation(Animation):
    """A pulse that travels twice around a ring of eight outputs, the layers "FaceLed0" to
    "FaceLed7".

        FaceLed0  | / \\ _ _ _ _ _ _ | / \\ _ _ _ _ _ _ _ |     / rise, \\ fall, _ rest
        FaceLed1  | _ / \\ _ _ _ _ _ | _ / \\ _ _ _ _ _ _ |
        ...                                                    each layer one step later
        FaceLed7  | _ _ _ _ _ _ _ / | \\ _ _ _ _ _ _ / \\ |

    >>> ring = Rotation(1, 0, rise_duration=3, fall_duration=2, step_duration=4)
    >>> ring.duration_in_frames(), ring.intro_size
    (65, 32)

    A layer rises from `rest_value` to `pulse_value`, falls back, and does so again one revolution
    (8 x `step_duration`) after its first rise, or at once where the pulse lasts as long or longer.
    Before, between and after it holds `rest_value`. The intro is the first revolution; the outro is
    what lies after the second one. Otherwise an animation like any other: edits leave the five
    members that say how it was made. Raises ValueError if a duration is 0 or the rotation would
    last 2^31 frames or more.
    """

    __slots__ = ("_given",)

    def __init__(
        self,
        pulse_value: Number,
        rest_value: Number,
        rise_duration: SupportsIndex,
        fall_duration: SupportsIndex,
        step_duration: SupportsIndex,
    ) -> None:
        self._given = (
            _core.number("pulse_value", pulse_value),
            _core.number("rest_value", rest_value),
            whole("rise_duration", rise_duration),
            whole("fall_duration", fall_duration),
            whole("step_duration", step_duration),
        )
        self._made = _core.rotation(*self._given)

    @property
    def _parts(self) -> tuple[float, float, int, int, int]:
        self._value  # has to be there
        return self._given

    @property
    def pulse_value(self) -> float:
        """What each pulse reaches at its top."""
        return self._parts[0]

    @property
    def rest_value(self) -> float:
        """What a layer holds before, between and after its pulses."""
        return self._parts[1]

    @property
    def rise_duration(self) -> int:
        """Frames from rest to pulse."""
        return self._parts[2]

    @property
    def fall_duration(self) -> int:
        """Frames from pulse back to rest."""
        return self._parts[3]

    @property
    def step_duration(self) -> int:
        """Frames by which each layer comes after the one before it."""
        return self._parts[4]

    def __eq__(self, other: object) -> bool:
        same = super().__eq__(other)
        return same and self._parts == other._parts if isinstance(other, Rotation) else same

    def __repr__(self) -> str:
        pulse, rest, rise, fall, step = self._parts
        values = f"pulse_value={_core.repr(pulse)}, rest_value={_core.repr(rest)}"
        durations = f"rise_duration={rise}, fall_duration={fall}, step_duration={step}"
        return f"{type(self).__name__}({values}, {durations})"

    def _attributes(self) -> dict[str, Any]:
        return {**super()._attributes(), "_given": self._parts}


class Playhead:
    """The frames of an animation in the order in which it plays: an iterator.

    It plays the intro, the body again and again, and the outro after `finish`.

        animation   | intro | body | outro |      told to finish during the second body
        plays       | intro | body | body | outro |

    >>> blink = Animation({"lamp": [Key(Hold, [1], 2), Key(Hold, [0], 2)]}, 1, 1)
    >>> head = Playhead(blink)
    >>> played = []
    >>> for frame in head:
    ...     played.append(frame)
    ...     if len(played) == 4:
    ...         head.finish()
    >>> played
    [0, 1, 2, 1, 2, 3]

    An empty body plays once. The sizes are those that the animation has at first; an edit of it
    does not disturb. Raises ValueError if they do not fit, or if a layer lasts 2^31 frames or more.
    """

    __slots__ = ("_head", "_begun")
    _head: _core.Playhead
    _begun: bool

    def __new__(cls, animation: Animation) -> Playhead:
        head = super().__new__(cls)
        head._head = _core.Playhead(value_of("animation", animation))
        head._begun = False
        return head

    def __iter__(self) -> Playhead:
        return self

    def __next__(self) -> int:
        if self._begun:
            self._head.next()  # not before: `finish` counts while the frame is due
        self._begun = True
        if self._head.ended():
            raise StopIteration
        return self._head.frame()

    def finish(self) -> None:
        """Has the body that plays be the last one. Any thread may call it, at any time."""
        self._head.finish()
