from __future__ import annotations

import copyreg
import enum
from collections.abc import Iterable
from typing import Any, SupportsIndex, TypeVar

from . import _core
from ._arguments import Number, whole

KeyType = TypeVar("KeyType", bound="Key")


class Effect(enum.IntEnum):
    """What a layer does while a key lasts.

    `Transition` has two arguments: the value moves linearly from the first to the second. `Hold`
    has one: the value for the whole key. `NoValue` has none: the key carries no value. `Wait` has
    none: it is filler, through which an overridden layer shows.

    >>> Effect["Hold"] is Hold
    True
    >>> Key(Hold, [1], 5).effect.name
    'Hold'

    Any other 32-bit number may be the effect of a key, too. It stays an int, takes no arguments and
    is treated like `NoValue`.
    """

    Transition = 0
    Hold = 1
    NoValue = 2
    Wait = 3


Transition = Effect.Transition
Hold = Effect.Hold
NoValue = Effect.NoValue
Wait = Effect.Wait


class Key(_core.Key):
    """An effect, its arguments and the whole frames that it lasts: a value, which never changes.

    >>> key = Key(Transition, [0, 100], 10)
    >>> key.replace(duration=20)
    Key(Transition, [0, 100], 20)
    >>> key == Key("Transition", [0, 100], 10)
    True

    `effect` is an Effect, its name or its number. `args` are two numbers for Transition, one for
    Hold and none for the others, which become 32-bit floats. `duration` is 1 or more. Raises
    ValueError where one of them is not so.
    """

    __slots__ = ()
    __match_args__ = ("effect", "args", "duration")

    def replace(
        self: KeyType,
        *,
        effect: Effect | str | int | None = None,
        args: Iterable[Number] | None = None,
        duration: SupportsIndex | None = None,
    ) -> KeyType:
        """Returns a key with other parts: `layer[0] = layer[0].replace(duration=12)`.

        This key stays what it is; `Animation.replace`, however, edits the animation.
        """
        return type(self)(
            self.effect if effect is None else effect,
            self.args if args is None else args,
            self.duration if duration is None else duration,
        )

    __replace__ = replace

    def split_at(self, frame: SupportsIndex) -> list[Key]:
        """Returns the key cut in two, the first piece `frame` frames long.

            Transition (0, 100) over 10    split_at(3)
            Transition (0, 30) over 3, Transition (30, 100) over 7

        The pieces of a Transition meet in the value that it has at the cut,

            frame x (end - start) / duration + start

        each step rounded to a 32-bit float. The pieces of other effects have the same arguments. At
        frame 0, and at the end or past it, there is nothing to cut: the result is the key alone.
        """
        return _core.split_key_at(self, whole("frame", frame))

    def split_each(self, step: SupportsIndex) -> list[Key]:
        """Returns the key cut into pieces of `step` frames and a last one of what remains.

            Hold (5) over 10    split_each(4)
            Hold (5) over 4, Hold (5) over 4, Hold (5) over 2

        Each piece of a Transition starts from its own index, so that rounding errors do not add up;
        the values may differ from those of `split_at` by a few roundings. Raises ValueError if
        `step` is 0.
        """
        return _core.split_key_each(self, whole("step", step))

    def __hash__(self) -> int:
        return hash((self.effect, self.args, self.duration))

    def __repr__(self) -> str:
        effect = self.effect.name if isinstance(self.effect, Effect) else self.effect
        args = ", ".join(map(_core.repr, self.args))
        return f"{type(self).__name__}({effect}, [{args}], {self.duration})"

    def __reduce__(self) -> tuple[Any, ...]:
        make = copyreg.__newobj__  # type: ignore[attr-defined]
        parts = (type(self), int(self.effect), self.args, self.duration)
        return make, parts, getattr(self, "__dict__", None)


_core.use(Key, tuple(Effect))
