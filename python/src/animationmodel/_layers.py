from __future__ import annotations

import operator
import sys
from collections.abc import Callable, Iterable, Iterator, Mapping, MutableMapping, MutableSequence
from typing import TYPE_CHECKING, Any, SupportsIndex, TypeVar, Union, overload

from . import _core
from ._arguments import value_of
from ._keys import Key

if TYPE_CHECKING:
    from ._animation import Animation

Default = TypeVar("Default")
Pairs = Union[Mapping[str, Iterable[Key]], Iterable[tuple[str, Iterable[Key]]]]
MOST_SHOWN = 100  # keys


class Layer(_core.Layer, MutableSequence[Key]):
    """The keys of a layer, as a list.

    It is a view, which looks the layer up by its name whenever it is used: what is changed in it is
    changed in the animation, and the other way round. Where there is no layer of that name any
    more, it raises KeyError.

    >>> show = Animation({"lamp": [Key(Hold, [1], 20)]})
    >>> keys = show.layers["lamp"]
    >>> keys.append(Key(Transition, [1, 0], 10))
    >>> keys[0] = keys[0].replace(duration=5)
    >>> keys == show.layer("lamp")
    True

    It has what lists have; slices, sums, products and copies are lists of their own. To exchange
    two layers, take copies: `layers["a"], layers["b"] = layers["b"].copy(), layers["a"].copy()`.
    """

    __slots__ = ()
    __hash__ = None  # type: ignore[assignment]

    def __new__(cls, animation: Animation, name: str) -> Layer:
        return super().__new__(cls, value_of("animation", animation), _core.text("name", name))

    def insert(self, index: SupportsIndex, value: Key) -> None:
        """Inserts a key before the one of that index."""
        if not isinstance(value, Key):
            _core.refuse("value", "a Key", value)
        index = operator.index(index)
        self[index:index] = [value]

    def extend(self, values: Iterable[Key]) -> None:
        """Appends keys."""
        self[len(self) :] = values

    def clear(self) -> None:
        """Takes all keys out. The layer stays."""
        del self[:]

    def reverse(self) -> None:
        """Puts the keys into the opposite order."""
        self[:] = self[::-1]

    def sort(self, *, key: Callable[[Key], Any], reverse: bool = False) -> None:
        """Sorts the keys by what `key` gives for each: `sort(key=lambda key: key.duration)`."""
        self[:] = sorted(self, key=key, reverse=reverse)

    def copy(self) -> list[Key]:
        """Returns a list of the keys."""
        return self[:]

    def index(self, value: Any, start: int = 0, stop: int = sys.maxsize) -> int:
        """Returns the index of the first such key. Raises ValueError if there is none."""
        return self[:].index(value, start, stop)

    def __add__(self, other: list[Key] | Layer) -> list[Key]:
        return self[:] + (other[:] if isinstance(other, Layer) else other)

    def __radd__(self, other: list[Key]) -> list[Key]:
        return other + self[:]

    def __mul__(self, count: SupportsIndex) -> list[Key]:
        return self[:] * count

    __rmul__ = __mul__

    def __imul__(self, count: SupportsIndex) -> Layer:
        self[:] = self[:] * count
        return self

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (list, Layer)):
            return NotImplemented
        return len(self) == len(other) and all(map(operator.eq, self, other))

    def __repr__(self) -> str:
        return repr(self[:]) if len(self) <= MOST_SHOWN else f"<Layer of {len(self)} keys>"

    def __copy__(self) -> list[Key]:
        return self[:]

    def __deepcopy__(self, memo: dict[int, Any]) -> list[Key]:
        return self[:]

    def __reduce__(self) -> tuple[Any, ...]:
        return list, (self[:],)


class Layers(MutableMapping[str, Layer]):
    """The layers of an animation by their names, as a dict: a view, like each Layer in it.

    >>> show = Animation({"lamp": [Key(Hold, [1], 20)]})
    >>> show.layers["bell"] = [Key(NoValue, [], 5)]
    >>> for name, keys in show.layers.items():
    ...     print(name, keys)
    bell [Key(NoValue, [], 5)]
    lamp [Key(Hold, [1], 20)]

    Names are in byte-wise order: "10" comes before "9", "Z" before "a". Any iterable of keys may be
    assigned; what is popped, joined or copied is a list or a dict of lists of its own.
    """

    __slots__ = ("_animation",)
    _animation: Animation

    def __new__(cls, animation: Animation) -> Layers:
        value_of("animation", animation)
        layers = super().__new__(cls)
        layers._animation = animation
        return layers

    def __getitem__(self, name: str) -> Layer:
        if not isinstance(name, str):
            raise KeyError(name)
        return Layer(self._animation, name)

    def __setitem__(self, name: str, keys: Iterable[Key]) -> None:
        self._animation._value.put_layers({name: keys})

    def __delitem__(self, name: str) -> None:
        self[name]  # raises KeyError
        self._animation._value.erase_layer(name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._animation.names())

    def __len__(self) -> int:
        return len(self._animation.names())

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and self._animation.has_layer(name)

    def setdefault(self, name: str, keys: Iterable[Key] = ()) -> Layer:
        """Returns the layer. If it is missing, it is created with `keys` first."""
        if name not in self:
            self[name] = keys
        return self[name]

    @overload  # type: ignore[override]
    def pop(self, name: str, /) -> list[Key]:
        ...

    @overload
    def pop(self, name: str, default: Default, /) -> list[Key] | Default:
        ...

    def pop(self, name: str, *default: Any) -> Any:
        """Takes a layer out and returns a list of its keys, or `default` if it is missing."""
        if default and name not in self:
            return default[0]
        keys = self[name].copy()
        del self[name]
        return keys

    def popitem(self) -> tuple[str, Any]:
        """Takes the last layer out and returns its name and a list of its keys."""
        if not self:
            raise KeyError("popitem(): there are no layers")
        name = self._animation.names()[-1]
        return name, self.pop(name)

    def clear(self) -> None:
        """Takes all layers out."""
        self._animation._value.set_layers({})

    def update(  # type: ignore[override]
        self, layers: Pairs = (), /, **named: Iterable[Key]
    ) -> None:
        """Puts layers in, or in the place of others of the same names."""
        self._animation._value.put_layers(dict(layers, **named))

    def copy(self) -> dict[str, list[Key]]:
        """Returns a dict of lists."""
        return {name: keys.copy() for name, keys in self.items()}

    def __or__(self, other: Mapping[str, Any]) -> dict[str, Any]:
        return self.copy() | dict(other)

    def __ror__(self, other: dict[str, Any]) -> dict[str, Any]:
        return other | self.copy()

    def __ior__(self, other: Pairs) -> Layers:  # type: ignore[misc]
        self.update(other)
        return self

    def __repr__(self) -> str:
        count = sum(map(len, self.values()))
        return repr(self.copy()) if count <= MOST_SHOWN else f"<Layers of {count} keys>"

    def __copy__(self) -> dict[str, list[Key]]:
        return self.copy()

    def __deepcopy__(self, memo: dict[int, Any]) -> dict[str, list[Key]]:
        return self.copy()

    def __reduce__(self) -> tuple[Any, ...]:
        return dict, (self.copy(),)
