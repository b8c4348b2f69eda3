import copy
import inspect
import json
import pathlib
import pickle
import re
import subprocess
import sys

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


def test_copies_and_files_are_equal():
    edited = lamp()
    edited.layers["\N{BULLET}"] = [Key(Effect(-7), [], 1), Key(Hold, [float("-inf")], 2**32 - 1)]
    edited.fps, edited.outro_size = 0, 2**32 - 1
    for show in (edited, Rotation(1, 0, 3, 2, 4), lamp().layers["lamp"][0]):
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
])
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
