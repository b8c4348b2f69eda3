"""Key-frame animations as data: layers of keys, built, edited, looped, cut and split.

>>> lamp = Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]}, intro_size=10)
>>> lamp.insert_in_layer("lamp", Key(Hold, [0.5], 5), 16)
>>> lamp.loop(3, repeat_intro=False, repeat_outro=False).sample().shape
(85, 1)

Keys are values, which never change. The layers of an animation are used as lists in a dict, and its
operations on frames are methods. An error is a TypeError, a ValueError, an IndexError or a
KeyError. It says which argument, which layer and which index is wrong.
"""

from ._animation import Animation, Playhead, Rotation
from ._core import version
from ._keys import Effect, Hold, Key, NoValue, Transition, Wait
from ._layers import Layer, Layers

__version__ = version
__all__ = [
    "Animation",
    "Effect",
    "Hold",
    "Key",
    "Layer",
    "Layers",
    "NoValue",
    "Playhead",
    "Rotation",
    "Transition",
    "Wait",
]

for _class in (Animation, Effect, Key, Layer, Layers, Playhead, Rotation):
    _class.__module__ = __name__  # where programs, and what they pickle, find it
