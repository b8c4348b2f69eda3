"""Uses everything that the package has, as type checkers let a program do."""

import copy
import pathlib
import pickle

import animationmodel
import numpy
from animationmodel import (
    Animation, Effect, Hold, Key, Layer, Layers, NoValue, Playhead, Rotation, Wait
)

version: str = animationmodel.__version__

# Keys
key = Key("Hold", [1], numpy.int64(5))
key = Key(7, [], 5)
key = Key(Hold, numpy.array([1.5], numpy.float32), 5)
effect: Effect | int = key.effect
other = key.replace(effect="Wait", args=(), duration=numpy.uint8(12))
match key:
    case Key(Effect.Hold, (value,), frames):
        assert value + frames == 6.5
pieces: list[Key] = key.split_at(2) + key.split_each(numpy.int8(2))
keys: set[Key] = {key, other, *pieces}

# Layers
show = Animation({"a": [key], "b": (key for _ in "xyz")}, numpy.int8(0), fps=numpy.float32(25))
show.layers = {"a": [key], "b": [Key(NoValue, [], 3)]}
show.layers |= {"c": [key]}
show.layers.update(a=[key])
show.layers.update({"x": (key,)}, y=[other])
show.layers.update([("z", iter([key]))])
show.layers["a"] += [key]
show.layers["a"] *= 2
layers: Layers = show.layers
layer: Layer = layers["a"]
layer[0] = layer[0].replace(duration=12)
layer[1:] = [key, other]
layer.sort(key=lambda key: key.duration, reverse=True)
layer.insert(numpy.int64(0), key)
total: list[Key] = layer + [key] + layer.copy()
total = [key] + layer
total = 2 * layer * 2
merged = layers | {"q": [key]}
for name, its_keys in layers.items():
    assert name.upper() and its_keys[-1].duration + its_keys.count(key) > 0
popped: list[Key] = layers.pop("a")
perhaps: list[Key] | None = layers.pop("a", None)
layers.setdefault("a").append(key)

# Animations
show.intro_size = numpy.int64(1)
show.outro_size += 1
show.fps = numpy.float32(25)
Animation.default_fps = 25
count: int = show.duration_in_frames() + show.intro_size
rate: float = show.fps + Animation.default_fps
show.fill_in_layer("a", numpy.uint16(30))
show.insert_in_layer("a", key, numpy.uint8(3))
show.push_back_in_layer("a", (key for _ in range(2)))
show.override_layer_with("a", [Key(Wait, [], 2), key], 0)
show.replace_in_layer("a", 0, 1, [key])
show.remove_in_layer("a", 0, 1)
show.insert(Rotation(1, 0, 3, 2, 4), 5)
show.replace(0, 1, show)
show.push_back(other=show, keep_outro=True, keep_intro=False)
show.override_layers_with(show, 3)
show.remove(0, numpy.int64(2))
show.set_fps_to_fit_duration_in_seconds(2.5)
shows: list[Animation] = [
    show.loop(2, repeat_intro=True, repeat_outro=False),
    *show.split_at(3, keep_intro=True, keep_outro=False),
    *show.split_at([1, numpy.int64(2)], True, True),
    *show.split_each(10, False, False),
]
intro, body, outro = show.intro_body_outro_layers()
assert [key.duration for key in body["a"]]
assert len(intro) == len(outro)
show.change_frame_rate(numpy.float32(50))
show.stretch_to(numpy.int64(100))
head = Playhead(show)
for frame in head:
    head.finish()
    assert frame < 100
values = show.sample(0, numpy.int64(3))
assert values[:, show.names().index("a")].shape == (3,)
seconds: float = show.duration_in_seconds() + show.simulated_duration_in_seconds(30)
longest: int = Animation.duration_in_frames_of(layers) + Animation.duration_in_frames_of([key])

# Files and copies
show.save(pathlib.Path("show.json"))
show = Animation.load("show.json")
assert show == Animation.from_json(show.to_json()) == pickle.loads(pickle.dumps(show))
duplicate: Animation = copy.deepcopy(show)
ring: Rotation = copy.copy(Rotation(1, 0, 3, 2, 4))
assert ring.pulse_value + ring.step_duration == 5
