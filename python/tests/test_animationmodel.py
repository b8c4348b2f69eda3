import copy
import inspect
import json
import pathlib
import pickle
import re
import subprocess
import sys
import xml.etree.ElementTree

import jsonschema
import numpy
import pytest
from animationmodel import Animation, Effect, Hold, Key, NoValue, Rotation, Transition, Wait

ROOT = pathlib.Path(__file__).parents[2]


def lamp():
    return Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]}, intro_size=10)


def test_layers_behave_as_lists_and_dicts():
    show = lamp()
    keys, model = show.layers["lamp"], show.layer("lamp")
    for change in (
        lambda keys: keys.insert(-1, Key(NoValue, [], 1)),
        lambda keys: keys.extend(keys),
        lambda keys: keys.__setitem__(slice(1, 3), [Key(Effect(7), [], 2)]),
        lambda keys: keys.__delitem__(slice(None, None, 3)),
        lambda keys: keys.reverse(),
        lambda keys: keys.__iadd__([Key(Hold, [3], 3), keys.pop(0)]),
        lambda keys: keys.__delitem__(-2),
    ):
        change(keys)
        change(model)
        assert keys == model == show.layer("lamp")
        assert repr(keys) == repr(model)
    keys[0], keys[1] = keys[1], keys[0]
    assert keys[:2] == [model[1], model[0]]
    taken = show.layers.pop("lamp")
    assert list(show.layers) == []
    show.layers.update(a=taken, b=[])
    show.layers["a"] += [Key(Wait, [], 1)]
    show.layers["a"], show.layers["b"] = show.layers["b"], show.layers["a"]
    show.layers.setdefault("a", []).append(taken[0])
    assert show.layers == {"a": [taken[0]], "b": [*taken, Key(Wait, [], 1)]}
    assert show.layers.pop("x", None) is None
    assert 1 not in show.layers


def test_keys_stay_what_they_were_taken_for():
    show = lamp()
    keys = show.layers["lamp"]
    fade, stay = keys
    for _ in range(1000):  # the layer moves in memory
        keys.insert(0, Key(Wait, [], 1))
    wrong = lamp()
    wrong.fps = 0
    with pytest.raises(ValueError):
        show.insert(wrong, 0)
    fade.duration = 12
    assert show.layer("lamp")[1000:] == [Key(Transition, [0, 1], 12), Key(Hold, [1], 20)]
    del keys[1000]
    fade.duration = 1
    assert show.layer("lamp")[1000:] == [stay]
    show.reset()
    del show
    stay.args = [7]
    assert keys[1000:] == [Key(Hold, [7], 20)]


def test_keys_are_their_own_after_an_operation():
    show = lamp()
    held = show.layers["lamp"][1]
    show.insert_in_layer("lamp", Key(Wait, [], 1), 0)
    held.duration = 5
    assert held == Key(Hold, [1], 5)
    assert show.layer("lamp")[1:] == lamp().layer("lamp")


def test_replacing_is_removing_and_inserting():
    replaced, edited, flash = lamp(), lamp(), [Key(Hold, [7], 3)]
    replaced.replace_in_layer("lamp", 2, 5, flash)
    replaced.replace(4, 9, lamp())
    edited.remove_in_layer("lamp", 2, 5)
    edited.insert_in_layer("lamp", flash, 2)
    edited.remove(4, 9)
    edited.insert(lamp(), 4)
    assert replaced == edited


def line_of(part):
    """What a failed row is called: the line of the function in it."""
    return f"line {part.__code__.co_firstlineno}" if inspect.isfunction(part) else ""


def nine():
    return Key(Hold, [9], 3)


def stage():
    """An animation whose members are all different."""
    return Animation({"a": [Key(Hold, [1], 4), Key(Hold, [2], 6)]}, 2, 3, 4)


def guest():
    return Animation({"a": [nine(), Key(Hold, [8], 2)]}, 1, 2)


def shown(*animations):
    """Layers and members on one line, a key as its value and its frames: "a: 1x4 -x6 | 2 3 25"."""
    def key(key):
        return f"{'>'.join(f'{arg:g}' for arg in key.args) or '-'}x{key.duration}"
    return " / ".join(
        "; ".join(f"{name}: {' '.join(map(key, keys))}" for name, keys in show.layers.items()) +
        f" | {show.intro_size} {show.outro_size} {show.fps:g}" for show in animations)


@pytest.mark.parametrize("edit, expected", [
    (lambda it: it.fill_in_layer("a", 12), "a: 1x4 2x6 -x2 | 2 3 4"),
    (lambda it: it.replace_in_layer("a", 2, 5, [nine()]), "a: 1x2 9x3 2x3 | 2 3 4"),
    (lambda it: it.insert_in_layer("a", nine(), 6), "a: 1x4 2x2 9x3 2x4 | 2 3 4"),
    (lambda it: it.push_back_in_layer("b", nine()), "a: 1x4 2x6; b: 9x3 | 2 3 4"),
    (lambda it: it.remove_in_layer("a", 2, 5), "a: 1x2 2x3 | 2 3 4"),
    (lambda it: it.override_layer_with("a", nine(), 2), "a: 1x2 9x3 2x6 | 2 3 4"),
    (lambda it: it.replace(1, 7, guest()), "a: 1x1 9x3 8x2 2x2 | 1 2 4"),
    (lambda it: it.insert(guest(), 1), "a: 1x1 9x3 8x2 1x3 2x6 | 7 3 4"),
    (lambda it: it.push_back(guest(), True, False), "a: 1x4 2x6 9x2 8x2 | 2 2 4"),
    (lambda it: it.push_back(guest(), False, True), "a: 1x4 2x3 9x3 8x2 | 2 2 4"),
    (lambda it: it.remove(1, 4), "a: 1x1 2x5 | 1 3 4"),
    (lambda it: it.override_layers_with(guest(), 3), "a: 1x3 9x3 8x2 2x6 | 2 3 4"),
    (lambda it: it.set_fps_to_fit_duration_in_seconds(2), "a: 1x4 2x6 | 2 3 5"),
    (lambda it: it.reset(), " | 0 0 25"),
    (lambda it: setattr(it, "layers", {"b": [nine()]}), "b: 9x3 | 2 3 4"),
    (lambda it: setattr(it, "intro_size", 2**32 - 1), "a: 1x4 2x6 | 4294967295 3 4"),
    (lambda it: setattr(it, "outro_size", 7), "a: 1x4 2x6 | 2 7 4"),
    (lambda it: setattr(it, "fps", 7), "a: 1x4 2x6 | 2 3 7"),
    (lambda it: setattr(it.layers["a"][0], "args", [7]), "a: 7x4 2x6 | 2 3 4"),
    (lambda it: setattr(it.layers["a"][-1], "duration", 7), "a: 1x4 2x7 | 2 3 4"),
], ids=line_of)
def test_every_edit_takes_its_arguments(edit, expected):
    it = stage()
    edit(it)
    assert shown(it) == expected


@pytest.mark.parametrize("ask, answer", [
    (lambda it: shown(it.loop(2, True, False)), "a: 1x2 1x2 2x3 1x2 1x2 2x6 | 2 3 4"),
    (lambda it: shown(it.loop(2, False, True)), "a: 1x2 1x2 2x3 2x3 1x2 2x6 | 2 3 4"),
    (lambda it: shown(*it.split_at(6, True, False)), "a: 1x4 2x2 | 2 0 4 / a: 2x4 | 0 0 4"),
    (lambda it: shown(*it.split_at([8], False, True)), "a: 1x4 2x4 | 0 1 4 / a: 2x2 | 0 0 4"),
    (lambda it: shown(*it.split_each(8, True, False)),
     "a:  | 0 0 4 / a: 1x4 2x4 | 2 0 4 / a: 2x2 | 0 0 4"),
    (lambda it: shown(*it.split_each(8, False, True)),
     "a:  | 0 0 4 / a: 1x4 2x4 | 0 1 4 / a: 2x2 | 0 0 4"),
    (lambda it: shown(*map(Animation, it.intro_body_outro_layers())),
     "a: 1x2 | 0 0 25 / a: 1x2 2x3 | 0 0 25 / a: 2x3 | 0 0 25"),
    (lambda it: (it.has_layer("a"), it.has_layer("b"), it.empty()), (True, False, False)),
    (lambda it: (it.duration_in_frames(), it.outro_start_frame()), (10, 7)),
    (lambda it: (it.duration_in_seconds(), it.simulated_duration_in_seconds(5)), (2.5, 2.0)),
    (lambda it: (it.duration_in_frames_of(it.layers["a"][:1]), it.duration_in_frames_of(it.layers)),
     (4, 10)),
    (lambda it: it.sample(8).tolist(), [[2], [2]]),
    (lambda it: it.sample(3, 2).tolist(), [[1], [2]]),
    (lambda it: it.sample(11).shape, (0, 1)),
    (lambda it: shown(Animation({"a": Key(Transition, [0, 8], 8).split_at(2)})),
     "a: 0>2x2 2>8x6 | 0 0 25"),
    (lambda it: shown(Animation({"a": Key(Transition, [0, 8], 8).split_each(4)})),
     "a: 0>4x4 4>8x4 | 0 0 25"),
], ids=line_of)
def test_every_question_is_answered(ask, answer):
    assert ask(stage()) == answer


@pytest.mark.parametrize("change", [
    lambda it, key: setattr(key, "effect", Wait),
    lambda it, key: setattr(key, "args", []),
    lambda it, key: setattr(key, "args", [-1e39]),
    lambda it, key: setattr(key, "duration", 0),
    lambda it, key: setattr(key, "duration", 2**32),
    lambda it, key: setattr(it, "fps", 1e39),
    lambda it, key: setattr(it, "intro_size", -1),
    lambda it, key: setattr(it, "outro_size", 2**32),
    lambda it, key: setattr(it, "layers", {"a": [nine()], "b": [None]}),
    lambda it, key: it.layers.__setitem__("a", [None]),
    lambda it, key: it.layers.__delitem__("b"),
    lambda it, key: it.layers.setdefault("b", [None]),
    lambda it, key: it.layers["a"].__setitem__(slice(1), [nine(), None]),
    lambda it, key: it.layers["a"].__setitem__(slice(None, None, 2), [nine(), nine()]),
    lambda it, key: it.layers["a"].__setitem__(2, nine()),
    lambda it, key: it.layers["a"].__delitem__(-3),
    lambda it, key: it.insert_in_layer("b", [nine(), None], 0),
    lambda it, key: it.insert(type(it).from_json('{"fps": 0, "layers": {}}'), 0),
    lambda it, key: it.set_fps_to_fit_duration_in_seconds(0),
    lambda it, key: it.from_json('{"layers": {"b": [1]}}'),
], ids=line_of)
def test_a_refusal_changes_nothing(change):
    it = stage()
    key = it.layers["a"][0]
    with pytest.raises((ValueError, TypeError, LookupError)):
        change(it, key)
    assert shown(it) == shown(stage())
    key.duration = 7
    assert it.layer("a")[0].duration == 7, "the key is in the layer no more"


def test_default_frame_rate():
    try:
        Animation.default_fps = 7
        assert (Animation.default_fps, Animation().fps, Animation({}, fps=5).fps) == (7, 7, 5)
    finally:
        Animation.default_fps = 25


def test_a_rotation_says_what_it_is_built_from():
    ring = Rotation(0.5, 0.25, 3, 2, 4)
    parts = (ring.pulse_value, ring.rest_value, ring.rise_duration, ring.fall_duration,
             ring.step_duration)
    assert parts == (0.5, 0.25, 3, 2, 4)
    assert ring.layer("FaceLed1")[:3] == [
        Key(Hold, [0.25], 4), Key(Transition, [0.25, 0.5], 3), Key(Transition, [0.5, 0.25], 2)]
    assert repr(ring) == ("Rotation(pulse_value=0.5, rest_value=0.25, rise_duration=3, "
                          "fall_duration=2, step_duration=4)")
    for other in [(1, 0.25, 3, 2, 4), (0.5, 1, 3, 2, 4), (0.5, 0.25, 1, 2, 4), (0.5, 0.25, 3, 1, 4),
                  (0.5, 0.25, 3, 2, 1)]:
        assert ring != Rotation(*other)


def test_what_is_shown_is_what_it_is():
    keys = [Key(effect, [], 1) for effect in (Wait, NoValue, Effect(4), Effect(-1))]
    edges = Animation({"a": keys + [Key(Transition, [0.1, float("-inf")], 2)] * 96}, 2, 3, 4)
    assert eval(repr(edges)) == edges
    assert eval(repr(edges.layers)) == edges.layers
    edges.layers["a"].append(nine())
    assert repr(edges) == "<Animation of 1 layers, 199 frames at 4 fps>"
    assert repr(edges.layers) == "<101 keys>"
    assert str(stage()) == "4 fps, intro 2, outro 3\na: Hold (1) over 4, Hold (2) over 6"
    assert str(nine()) == "Hold (9) over 3"


def test_pictures_have_their_texts_and_lamps():
    text = "<a> & \"b\" &amp; ]]> 'c'"
    picture = Animation({text: [nine()]}).svg(text + "!")
    texts = [element.text for element in xml.etree.ElementTree.fromstring(picture).iter()]
    assert texts.count(text + "!") == 1, "the title"
    assert texts.count(text) == 2, "at the lamp and at the lane"
    assert Animation({f"{i}": [] for i in range(32)}).svg().count('r="16"') == 32
    assert Animation({f"{i}": [] for i in range(33)}).svg().count('r="8"') == 33
    few = Animation({"a": [Key(Wait, [], 1)] * 10000})
    assert few._repr_svg_().count("<image") == 1
    few.layers["a"].append(nine())
    assert few._repr_svg_() is None, "too many keys"


def test_copies_and_files_are_equal():
    edited = lamp()
    edited.layers["\N{BULLET}"] = [Key(Effect(-7), [], 1), Key(Hold, [float("-inf")], 2**32 - 1)]
    edited.fps, edited.outro_size = 0, 2**32 - 1
    ring = Rotation(1, 0, 3, 2, 4)
    ring.remove(5, 7)
    for show in (edited, ring, lamp().layers["lamp"][0]):
        pickled = [pickle.loads(pickle.dumps(show, protocol)) for protocol in range(6)]
        for again in (copy.copy(show), copy.deepcopy(show), *pickled):
            assert again == show and type(again) is type(show)
    assert Animation.from_json(edited.to_json()) == edited
    assert eval(repr(lamp())) == lamp()


def test_sample_gives_what_each_cut_begins_with():
    show = Animation({"a": [Key(Transition, [0.1, 0.7], 7)], "b": [], "c": lamp().layer("lamp")})
    values = show.sample()
    assert (values.dtype, values.shape) == (numpy.float32, (30, 3))
    for frame, row in enumerate(values):
        last = show.split_at(numpy.array([frame]), False, False)[-1]
        begins = [layer[0].args for layer in last.layers.values()]
        expected = numpy.float32([args[0] if args else numpy.nan for args in begins])
        numpy.testing.assert_array_equal(row, expected)
    numpy.testing.assert_array_equal(show.sample(5, 3), values[5:8])


def test_threads_may_be_the_first_to_sample():
    program = """
from concurrent.futures import ThreadPoolExecutor
from animationmodel import Rotation
with ThreadPoolExecutor(2) as pool:
    list(pool.map(lambda step: Rotation(1, 0, 3, 2, step).sample(), range(1, 9)))
"""
    subprocess.run([sys.executable, "-c", program], check=True, timeout=60)


@pytest.mark.parametrize("call, error, text", [
    (lambda: lamp().remove(-1, 2), ValueError, "start has to be 0 to 4294967295, not -1"),
    (lambda: lamp().loop(2**70, True, True), ValueError, "count has to be 0 to 4294967295"),
    (lambda: lamp().sample(1, 2**32 - 1), ValueError, "start [+] count has to be less than"),
    (lambda: Key(Wait, [], 0), ValueError, "Duration of AnimationKeyCommand must be > 0"),
    (lambda: Key(Hold, [1e39], 1), ValueError, "args has to be within the range of 32-bit floats"),
    (lambda: Animation.from_json('{"layers": 1}'), ValueError, "^/layers: needs an object"),
    (lambda: Animation({b"x": []}), TypeError, "needs a str, not <class 'bytes'>"),
    (lambda: Animation.from_json(b"{}"), TypeError, "text: str"),
    (lambda: lamp().insert_in_layer("lamp", [None], 1), TypeError, "needs a Key, not <class 'None"),
    (lambda: type("Late", (Animation,), {"__init__": Animation.empty})(), TypeError, "super"),
    (lambda: lamp().layers["lamp"][2], IndexError, ""),
    (lambda: lamp().layers["lamp"][2**70], IndexError, ""),
    (lambda: lamp().layers["lamp"][numpy.float32(1)], TypeError, ""),
    (lambda: lamp().layers["x"], KeyError, "x"),
    (lambda: Rotation(1, 0, 3, 2, 4).sample(0, 2**32 - 1), MemoryError, ""),
], ids=line_of)
def test_refusals(call, error, text):
    with pytest.raises(error, match=text):
        call()


@pytest.mark.parametrize("change", [
    {}, {"fps": "nan"}, {"fps": True}, {"introSize": 4.0}, {"introSize": 2**32}, {"other": 1},
    {"layers": None}, {"layers": {"a": {}}}, *({"layers": {"a": [["Wait", [], 1], key]}} for key in (
        ["Transition", [0, 3.4028235e38], 1], [0, ["inf", -0.0], 1], [7, [], 2**32 - 1], "Wait",
        ["Hold", [1, 2], 1], ["hold", [1], 1], [False, [0, 1], 1], ["Wait", [], 1.5], [1, [1], 1],
        ["Hold", [1e39], 1], ["Wait", [0], 1], ["Wait", [], 0], ["Wait", []], [2**31, [], 1])),
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


def test_stubs_have_the_same_arguments_and_every_operation_says_what_it_does():
    stubs = (ROOT / "python/__init__.pyi").read_text().split("class Animation:")[1]
    for name, method in inspect.getmembers(Animation, inspect.isroutine):
        if not name.startswith("_"):
            said = re.search(rf"def {name}\(([^)]*)\)", stubs)[1]
            signature, text = method.__doc__.split("\n", 1)
            assert re.findall(r"(\w+): ", said) == re.findall(r"(\w+): ", signature)[said.count("self"):]
            assert text.strip(), name


def test_readme_shows_what_runs(tmp_path):
    program = ROOT / "python/quickstart.py"
    assert f"```python\n{program.read_text()}```" in (ROOT / "README.md").read_text()
    said = subprocess.check_output([sys.executable, program], cwd=tmp_path, text=True)
    assert said.startswith("85 frames: [[0. ]\n")
    assert Animation.from_json((tmp_path / "lamp.json").read_text()).duration_in_frames() == 85
