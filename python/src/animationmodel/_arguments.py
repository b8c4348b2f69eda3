"""What is given as an argument, as what the module takes. Errors say the argument's name."""

from __future__ import annotations

from typing import TYPE_CHECKING, SupportsFloat, SupportsIndex, Union

from . import _core

if TYPE_CHECKING:
    from ._animation import Animation

Number = Union[SupportsFloat, SupportsIndex]


def whole(name: str, given: SupportsIndex) -> int:
    """A number of frames, or a frame."""
    return _core.whole(name, given, 0, 2**32 - 1)


def value_of(name: str, given: Animation) -> _core.Animation:
    """The value of an animation whose constructor has run."""
    value = getattr(given, "_value", None)
    if not isinstance(value, _core.Animation):
        _core.refuse(name, "an Animation", given)
    return value
