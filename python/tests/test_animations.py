import copy
import json
import pathlib
import pickle
import subprocess
import sys

import jsonschema
import numpy
import pytest
from animationmodel import Animation, Hold, Key, Layer, Layers, Playhead, Rotation, Transition, Wait

ROOT = pathlib.Path(__file__).parents[2]


def lamp():
    return Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]}, intro_size=10)


class Show(Animation):
    """With a constructor of its own, and a text that pickle must not take for that of the class."""

    def __init__(self, title):
        super().__init__({"lamp": [Key(Hold, [1], 5)]}, fps=30)
        self.title = title
        self.notes = [self]

    def to_json(self):
        return "{}"


class Ring(Rotation):
    pass


class Late(Animation):
    def __init__(self):
        """Forgets that of the class."""


def edited():
    """What no constructor would make."""
    show = lamp()
    show.layers["\N{BULLET}"] = [Key(-7, [], 1), Key(Hold, [float("-inf")], 2**32 - 1)]
    show.fps = 0
    show.outro_size = 2**32 - 1
    return show


@pytest.mark.parametrize("protocol", range(-2, pickle.HIGHEST_PROTOCOL + 1))
@pytest.mark.parametrize("make", [lamp, edited, lambda: Rotation(1, 0, 3, 2, 4),
                                  lambda: Show("a"), lambda: Ring(0.1, 0, 3, 2, 4)])
def test_copies_are_equal_and_share_nothing(make, protocol):
    show = make()
    again = {-2: copy.copy, -1: copy.deepcopy}.get(
        protocol, lambda show: pickle.loads(pickle.dumps(show, protocol))
    )(show)
    assert type(again) is type(show)
    assert again == show
    again.layers.clear()
    assert again != show
    assert show == make()


@pytest.mark.parametrize("protocol", range(-1, pickle.HIGHEST_PROTOCOL + 1))
def test_copies_keep_what_a_subclass_adds(protocol):
    show = Show("a")
    again = copy.deepcopy(show) if protocol < 0 else pickle.loads(pickle.dumps(show, protocol))
    assert again.title == "a"
    assert again.notes[0] is again
    assert copy.copy(show).notes is show.notes


def test_rotations_have_what_they_are_made_of():
    ring = copy.copy(Rotation(0.1, 0, 3, 2, 4))
    members = ring.pulse_value, ring.rest_value, ring.rise_duration, ring.fall_duration
    assert members == (numpy.float32(0.1), 0, 3, 2)
    assert ring.step_duration == 4
    assert ring.layer("FaceLed0")[:2] == [Key(Transition, [0, 0.1], 3), Key(Transition, [0.1, 0], 2)]
    assert repr(ring) == (
        "Rotation(pulse_value=0.1, rest_value=0, rise_duration=3, fall_duration=2, step_duration=4)"
    )
    same_layers = Animation(ring.layers, ring.intro_size, ring.outro_size)
    assert ring == same_layers
    other = copy.copy(ring)
    other.__init__(0.2, 0, 3, 2, 4)
    other.layers = ring.layers
    assert ring != other


def test_repr_makes_an_equal_one():
    show = lamp()
    show.fps = 12.5
    show.outro_size = 7
    assert eval(repr(show)) == show
    assert repr(Show("a")).startswith("Show({'lamp'")
    assert str(Animation({"a": [FLASH]})) == "25 fps, intro 0, outro 0\na: Hold (7) over 3"


def test_members_can_be_set():
    show = lamp()
    show.intro_size = numpy.uint8(3)
    show.outro_size += 2
    show.fps = numpy.float32(0.1)
    assert (show.intro_size, show.outro_size, show.fps) == (3, 2, numpy.float32(0.1))
    with pytest.raises(AttributeError):
        show.introsize = 3


def test_the_default_frame_rate_is_that_of_the_class():
    assert Animation.default_fps == 25
    Animation.default_fps = 30
    try:
        assert Animation().fps == Rotation(1, 0, 3, 2, 4).fps == 30
    finally:
        Animation.default_fps = 25


def show():
    a = [Key(Hold, [1], 4), Key(Hold, [2], 6)]
    return Animation({"a": a, "b": [Key(Hold, [3], 10)]}, intro_size=2, outro_size=3)


def other():
    return Animation({"b": [Key(Hold, [9], 3)]}, intro_size=1, outro_size=1)


FLASH = Key(Hold, [7], 3)


@pytest.mark.parametrize("edit, sizes, a, b", [
    (lambda show: show.fill_in_layer("a", 12), "2 3", "1:4 2:6 W:2", "3:10"),
    (lambda show: show.replace_in_layer("a", 2, 5, FLASH), "2 3", "1:2 7:3 2:3", "3:10"),
    (lambda show: show.insert_in_layer("a", [FLASH], 6), "2 3", "1:4 2:2 7:3 2:4", "3:10"),
    (lambda show: show.push_back_in_layer("a", iter([FLASH])), "2 3", "1:4 2:6 7:3", "3:10"),
    (lambda show: show.remove_in_layer("a", 2, 5), "2 3", "1:2 2:3", "3:10"),
    (lambda show: show.override_layer_with("a", FLASH, 2), "2 3", "1:2 7:3 2:6", "3:10"),
    (lambda show: show.replace(1, 4, other()), "1 3", "1:1 W:3 2:5", "3:1 9:3 3:5"),
    (lambda show: show.insert(other(), 1), "5 3", "1:1 W:3 1:3 2:6", "3:1 9:3 3:9"),
    (lambda show: show.push_back(other(), True, False), "2 1", "1:4 2:6 W:2", "3:10 9:2"),
    (lambda show: show.push_back(other(), False, True), "2 1", "1:4 2:3 W:3", "3:7 9:3"),
    (lambda show: show.remove(1, 4), "1 3", "1:1 2:5", "3:1 3:5"),
    (lambda show: show.override_layers_with(other(), 4), "2 3", "1:4 2:6", "3:4 9:3 3:6"),
    (lambda show: show.stretch_to(20), "4 6", "1:8 2:12", "3:20"),
    (lambda show: show.change_frame_rate(12.5), "1 1", "1:2 2:3", "3:5"),
])
def test_edits(edit, sizes, a, b):
    edited = show()
    assert edit(edited) is None
    layers = (text_of(edited.layers[name]) for name in "ab")
    assert (f"{edited.intro_size} {edited.outro_size}", *layers) == (sizes, a, b)


def text_of(keys):
    values = (f"{key.args[0]:g}" if key.args else "W" for key in keys)
    return " ".join(f"{value}:{key.duration}" for value, key in zip(values, keys))


@pytest.mark.parametrize("call, pieces", [
    (lambda show: [show.loop(2, True, False)], ["2 3 1:2 1:2 2:3 1:2 1:2 2:6"]),
    (lambda show: [show.loop(2, False, True)], ["2 3 1:2 1:2 2:3 2:3 1:2 2:6"]),
    (lambda show: show.split_at(4, True, False), ["2 0 1:4", "0 0 2:6"]),
    (lambda show: show.split_at({3, 8}, False, True), ["0 0 1:3", "0 1 1:1 2:4", "0 0 2:2"]),
    (lambda show: show.split_at(numpy.array([8]), False, True), ["0 1 1:4 2:4", "0 0 2:2"]),
    (lambda show: show.split_each(8, True, False), ["0 0 ", "2 0 1:4 2:4", "0 0 2:2"]),
    (lambda show: show.split_each(8, False, True), ["0 0 ", "0 1 1:4 2:4", "0 0 2:2"]),
])
def test_new_animations(call, pieces):
    for made, expected in zip(call(show()), pieces, strict=True):
        assert f"{made.intro_size} {made.outro_size} {text_of(made.layers['a'])}" == expected


def test_parts_and_measures():
    parts = [text_of(layers["a"]) for layers in show().intro_body_outro_layers()]
    assert parts == ["1:2", "1:2 2:3", "2:3"]
    assert show().names() == ["a", "b"]
    assert show().layer("b") == [Key(Hold, [3], 10)]
    assert (show().has_layer("b"), show().has_layer("c")) == (True, False)
    assert (show().empty(), Animation({"a": []}).empty()) == (False, True)
    assert (show().duration_in_frames(), show().outro_start_frame()) == (10, 7)
    assert show().duration_in_seconds() == numpy.float32(0.4)
    assert show().simulated_duration_in_seconds(20) == 0.5
    measured = show().layers, show().layers["b"], {"a": [FLASH, FLASH]}, [FLASH, FLASH], FLASH
    assert [Animation.duration_in_frames_of(layers) for layers in measured] == [10, 10, 6, 6, 3]
    timed = show()
    timed.set_fps_to_fit_duration_in_seconds(2)
    assert timed.fps == 5
    timed.reset()
    assert timed == Animation()


@pytest.mark.parametrize("finished_at, frames", [
    (0, [0, 1, 2, 3]),
    (2, [0, 1, 2, 3]),
    (3, [0, 1, 2, 1, 2, 3]),
    (4, [0, 1, 2, 1, 2, 3]),
])
def test_a_playhead_gives_the_frames_that_are_due(finished_at, frames):
    blink = Animation({"lamp": [Key(Hold, [1], 2), Key(Hold, [0], 2)]}, 1, 1)
    head = Playhead(blink)
    blink.reset()
    due = []
    for frame in head:
        due.append(frame)
        if len(due) == finished_at + 1:
            head.finish()
    assert due == frames
    assert list(head) == []


def test_sample_gives_what_each_cut_begins_with():
    show = Animation({"a": [Key(Transition, [0.1, 0.7], 7)], "b": [], "c": lamp().layer("lamp")})
    values = show.sample()
    assert (values.dtype, values.shape) == (numpy.float32, (30, 3))
    for frame, row in enumerate(values):
        last = show.split_at(frame, False, False)[-1]
        begins = [layer[0].args for layer in last.layers.values()]
        expected = numpy.float32([args[0] if args else numpy.nan for args in begins])
        numpy.testing.assert_array_equal(row, expected)
    numpy.testing.assert_array_equal(show.sample(5, 3), values[5:8])
    assert show.sample(31).shape == (0, 3)
    assert Animation().sample(2, 5).shape == (5, 0)


def test_threads_may_be_the_first_to_sample():
    program = """
from concurrent.futures import ThreadPoolExecutor
from animationmodel import Rotation
with ThreadPoolExecutor(2) as pool:
    list(pool.map(lambda step: Rotation(1, 0, 3, 2, step).sample(), range(1, 9)))
"""
    subprocess.run([sys.executable, "-c", program], check=True, timeout=60)


@pytest.mark.parametrize("use", [
    repr, str, copy.copy, pickle.dumps, Animation.empty, Animation.names, Animation.to_json,
    lambda late: late.fps,
    lambda late: setattr(late, "fps", 5),
    lambda late: setattr(late, "layers", {}),
    lambda late: late.layers,
    lambda late: late == lamp(),
    lambda late: lamp() == late,
    lambda late: lamp().insert(late, 0),
    lambda late: Layer(late, "lamp"),
    Layers,
    Playhead,
])
@pytest.mark.parametrize("late", [
    Late, lambda: Animation.__new__(Animation), lambda: Ring.__new__(Ring)
])
def test_animations_cannot_be_used_before_their_constructor(late, use):
    with pytest.raises(TypeError) as raised:
        use(late())
    assert str(raised.value) == "Animation.__init__() has to be called first"


def edit(show, name, value):
    setattr(show, name, value)


def put(layer, index, value):
    layer[index] = value


@pytest.mark.parametrize("call, error, text", [
    (lambda: Animation({"lamp": [("Hold", [1], 2)]}), TypeError,
     'layers["lamp"][0] needs a Key, not a tuple'),
    (lambda: Animation({"lamp": 5}), TypeError, 'layers["lamp"] needs keys, not an int'),
    (lambda: Animation({"lamp": FLASH}), TypeError, 'layers["lamp"] needs keys, not a Key'),
    (lambda: Animation([FLASH]), TypeError, "layers needs a dict, not a list"),
    (lambda: Animation({b"x": []}), TypeError, "each name in layers needs a str, not a bytes"),
    (lambda: Animation({}, 1.5), TypeError, "intro_size needs an int, not a float"),
    (lambda: Animation({}, 0, -1), ValueError, "outro_size has to be 0 to 4294967295, not -1"),
    (lambda: Animation(fps="25"), TypeError, "fps needs a number, not a str"),
    (lambda: Animation(frames=5), TypeError,
     "Animation.__init__() got an unexpected keyword argument 'frames'"),
    (lambda: edit(lamp(), "intro_size", -1), ValueError,
     "intro_size has to be 0 to 4294967295, not -1"),
    (lambda: edit(lamp(), "outro_size", None), TypeError, "outro_size needs an int, not None"),
    (lambda: edit(lamp(), "fps", 1e39), ValueError,
     "fps has to be within the range of 32-bit floats"),
    (lambda: edit(Animation, "default_fps", "25"), TypeError,
     "default_fps needs a number, not a str"),
    (lambda: edit(lamp(), "layers", 5), TypeError, "layers needs a dict, not an int"),
    (lambda: lamp().insert(5, 0), TypeError, "other needs an Animation, not an int"),
    (lambda: lamp().insert(lamp()), TypeError,
     "Animation.insert() missing 1 required positional argument: 'frame'"),
    (lambda: lamp().remove(2**32, 2), ValueError,
     "start has to be 0 to 4294967295, not 4294967296"),
    (lambda: lamp().loop(2**70, True, True), ValueError, "count has to be 0 to 4294967295"),
    (lambda: lamp().split_at([1, "2"], True, True), TypeError, "frames[1] needs an int, not a str"),
    (lambda: lamp().split_each(0, True, True), ValueError,
     "Could not split Animation each 0 frame: This number should be strictly higher than 0"),
    (lambda: lamp().sample(1, 2**32 - 1), ValueError,
     "start + count has to be 0 to 4294967295, not 4294967296"),
    (lambda: lamp().insert_in_layer(5, FLASH, 1), TypeError, "name needs a str, not an int"),
    (lambda: lamp().insert_in_layer("lamp", [FLASH, None], 1), TypeError,
     "keys[1] needs a Key, not None"),
    (lambda: lamp().push_back_in_layer("lamp", 5), TypeError, "keys needs keys, not an int"),
    (lambda: lamp().simulated_duration_in_seconds("a"), TypeError, "fps needs a number, not a str"),
    (lambda: lamp().set_fps_to_fit_duration_in_seconds([]), TypeError,
     "seconds needs a number, not a list"),
    (lambda: lamp().change_frame_rate("a"), TypeError, "fps needs a number, not a str"),
    (lambda: lamp().change_frame_rate(0), ValueError,
     "Frame rates (25 and 0) should be above 0 and finite to change them"),
    (lambda: lamp().stretch_to(1.5), TypeError, "frames needs an int, not a float"),
    (lambda: Playhead({}), TypeError, "animation needs an Animation, not a dict"),
    (lambda: Playhead(), TypeError,
     "Playhead.__new__() missing 1 required positional argument: 'animation'"),
    (lambda: lamp().layer("bell"), KeyError, "'bell'"),
    (lambda: lamp().layers["bell"], KeyError, "'bell'"),
    (lambda: lamp().layers.pop("é" * 101), KeyError, f"'{'é' * 100}'"),
    (lambda: lamp().layers["lamp"][2], IndexError, 'layers["lamp"] has 2 keys, none of index 2'),
    (lambda: lamp().layers["lamp"].pop(-3), IndexError,
     'layers["lamp"] has 2 keys, none of index -3'),
    (lambda: lamp().layers["lamp"]["0"], TypeError,
     'an index of layers["lamp"] needs an int or a slice, not a str'),
    (lambda: put(lamp().layers["lamp"], 1, "key"), TypeError,
     'layers["lamp"][1] needs a Key, not a str'),
    (lambda: put(lamp().layers["lamp"], slice(1), [FLASH, 5]), TypeError,
     "keys[1] needs a Key, not an int"),
    (lambda: lamp().layers["lamp"].append("key"), TypeError, "value needs a Key, not a str"),
    (lambda: put(lamp().layers["lamp"], slice(None, None, 2), []), ValueError,
     "attempt to assign sequence of size 0 to extended slice of size 1"),
    (lambda: Rotation(1, 0, 3, "2", 4), TypeError, "fall_duration needs an int, not a str"),
    (lambda: Animation.from_json(b"{}"), TypeError, "text needs a str, not a bytes"),
    (lambda: Animation.from_json('{"layers": 1}'), ValueError,
     "/layers: needs an object of layers, not 1"),
])
def test_refusals(call, error, text):
    with pytest.raises(error) as raised:
        call()
    assert str(raised.value) == text


@pytest.mark.parametrize("change", [
    {}, {"version": 1}, {"version": 2}, {"version": "1"}, {"$schema": "a"}, {"$schema": 5},
    {"fps": "nan"}, {"fps": True}, {"introSize": 4.0}, {"introSize": 2**32}, {"other": 1},
    {"layers": None}, {"layers": {"a": {}}},
    *({"layers": {"a": [["Wait", [], 1], key]}} for key in (
        ["Transition", [0, 3.4028235e38], 1], [0, ["inf", -0.0], 1], [7, [], 2**32 - 1], "Wait",
        ["Hold", [1, 2], 1], ["hold", [1], 1], [False, [0, 1], 1], ["Wait", [], 1.5], [1, [1], 1],
        ["Hold", [3.4028235677973362e38], 1], ["Hold", [-3.4028235677973366e38], 1],
        ["Wait", [0], 1], ["Wait", [], 0], ["Wait", []], [2**31, [], 1])),
])
def test_the_schema_allows_what_is_read(change):
    schema = json.loads((ROOT / "docs/animation.schema.json").read_text())
    allows = jsonschema.Draft202012Validator(schema).is_valid
    file = {"fps": 25, "outroSize": 1, "layers": {"a": [["Hold", [1], 5]]}} | change
    try:
        assert allows(json.loads(Animation.from_json(json.dumps(file)).to_json()))
        assert allows(file)
    except ValueError:
        assert not allows(file)


def test_files_give_the_same_animation(tmp_path):
    path = tmp_path / "lamp.json"
    edited().save(path)
    assert path.read_bytes() == edited().to_json().encode()
    assert Animation.load(str(path)) == edited()
    path.write_text('{"layers": 1}')
    with pytest.raises(ValueError, match="/layers: needs an object of layers, not 1"):
        Animation.load(path)
