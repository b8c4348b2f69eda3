import copy
import pickle
import random

import pytest
from animationmodel import Animation, Hold, Key, Layer, NoValue, Transition, Wait


def lamp():
    return Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]})


def some_key(draw):
    return Key(Hold, [draw.randrange(3)], draw.randrange(1, 4))


def some_keys(draw):
    return [some_key(draw) for _ in range(draw.randrange(4))]


def some_index(draw):
    return draw.randrange(-6, 6)


def some_slice(draw):
    parts = [None, *range(-6, 7)]
    return slice(draw.choice(parts), draw.choice(parts), draw.choice([None, 1, 2, -1, -3, 0]))


def emptied(keys, draw):
    """A key, for which the others go."""
    keys.clear()
    yield some_key(draw)


# What people do with a list, and with a dict of lists. `draw` gives the same twice.
OF_LISTS = {
    "append": lambda keys, draw: keys.append(some_key(draw)),
    "extend": lambda keys, draw: keys.extend(iter(some_keys(draw))),
    "extend by itself": lambda keys, draw: len(keys) < 9 and keys.extend(keys),
    "insert": lambda keys, draw: keys.insert(some_index(draw), some_key(draw)),
    "pop": lambda keys, draw: keys.pop(),
    "pop at": lambda keys, draw: keys.pop(some_index(draw)),
    "remove": lambda keys, draw: keys.remove(some_key(draw)),
    "reverse": lambda keys, draw: keys.reverse(),
    "clear": lambda keys, draw: keys.clear(),
    "sort": lambda keys, draw: keys.sort(key=lambda key: key.duration, reverse=draw.random() < 0.5),
    "copy": lambda keys, draw: keys.copy(),
    "index": lambda keys, draw: keys.index(some_key(draw), some_index(draw), some_index(draw)),
    "count": lambda keys, draw: keys.count(some_key(draw)),
    "in": lambda keys, draw: some_key(draw) in keys,
    "reversed": lambda keys, draw: list(reversed(keys)),
    "item": lambda keys, draw: keys[some_index(draw)],
    "slice": lambda keys, draw: keys[some_slice(draw)],
    "set item": lambda keys, draw: keys.__setitem__(some_index(draw), some_key(draw)),
    "set slice": lambda keys, draw: keys.__setitem__(some_slice(draw), some_keys(draw)),
    "set slice to itself": lambda keys, draw: keys.__setitem__(slice(1, 3), keys[:4]),
    "set slice of what is gone": lambda keys, draw: keys.__setitem__(slice(1, 3),
                                                                     emptied(keys, draw)),
    "delete item": lambda keys, draw: keys.__delitem__(some_index(draw)),
    "delete slice": lambda keys, draw: keys.__delitem__(some_slice(draw)),
    "+": lambda keys, draw: (keys + some_keys(draw), some_keys(draw) + keys, keys + keys),
    "*": lambda keys, draw: (keys * draw.randrange(-1, 3), 2 * keys),
    "+=": lambda keys, draw: keys.__iadd__(some_keys(draw)),
    "*=": lambda keys, draw: len(keys) < 9 and keys.__imul__(draw.randrange(3)),
    "==": lambda keys, draw: (keys == keys[:], keys == some_keys(draw), keys != keys[:], keys == 5),
    "loop that edits": lambda keys, draw: [keys.append(key) for key in keys if len(keys) < 9],
    "repr": lambda keys, draw: repr(keys),
    "copied": lambda keys, draw: (copy.copy(keys), copy.deepcopy(keys)),
    "pickled": lambda keys, draw: pickle.loads(pickle.dumps(keys, draw.randrange(6))),
}


def some_name(draw):
    return draw.choice("abc")


OF_DICTS = {
    "set": lambda layers, draw: layers.__setitem__(some_name(draw), some_keys(draw)),
    "set to another": lambda layers, draw: layers.__setitem__(some_name(draw), layers["b"][:]),
    "+= in it": lambda layers, draw: layers.__setitem__("a", layers["a"].__iadd__(some_keys(draw))),
    "delete": lambda layers, draw: layers.__delitem__(some_name(draw)),
    "get": lambda layers, draw: layers.get(some_name(draw)),
    "missing": lambda layers, draw: layers[5],
    "in": lambda layers, draw: (some_name(draw) in layers, 5 in layers),
    "pop": lambda layers, draw: layers.pop(some_name(draw)),
    "pop or": lambda layers, draw: layers.pop(some_name(draw), None),
    "popitem": lambda layers, draw: layers.popitem() if len(layers) < 2 else None,  # the last added
    "setdefault": lambda layers, draw: layers.setdefault(some_name(draw), some_keys(draw)),
    "update": lambda layers, draw: layers.update({some_name(draw): some_keys(draw)}, c=[]),
    "update by pairs": lambda layers, draw: layers.update([(some_name(draw), some_keys(draw))]),
    "clear": lambda layers, draw: draw.random() < 0.1 and layers.clear(),
    "copy": lambda layers, draw: layers.copy(),
    "|": lambda layers, draw: (layers | {"b": some_keys(draw)}, {"b": some_keys(draw)} | layers),
    "|=": lambda layers, draw: layers.__ior__({some_name(draw): some_keys(draw)}),
    "items": lambda layers, draw: sorted((name, list(keys)) for name, keys in layers.items())[:1],
    "keys and values": lambda layers, draw: (set(layers), set(layers.keys()), len(layers.values())),
    "==": lambda layers, draw: (layers == {"a": []}, layers == dict(layers), layers == 5),
    "copied": lambda layers, draw: (copy.copy(layers), copy.deepcopy(layers)),
    "pickled": lambda layers, draw: pickle.loads(pickle.dumps(layers, draw.randrange(6))),
}


def outcome(call, subject, seed):
    """What comes of it: a value as built-in ones, or the type of the error."""
    try:
        result = call(subject, random.Random(seed))
    except Exception as error:
        return type(error)
    return list(result) if isinstance(result, Layer) else result


@pytest.mark.parametrize("seed", range(20))
def test_layers_do_what_lists_and_dicts_do(seed):
    draw = random.Random(seed)
    show, model = Animation(), {}
    for step in range(300):
        name = some_name(draw)
        seed = draw.random()
        if draw.random() < 0.7 and name in model:
            what = draw.choice(list(OF_LISTS))
            subjects, call = (show.layers[name], model[name]), OF_LISTS[what]
        else:
            what = draw.choice(list(OF_DICTS))
            subjects, call = (show.layers, model), OF_DICTS[what]
        came, expected = (outcome(call, subject, seed) for subject in subjects)
        assert came == expected, f"step {step}: {what}"
        assert show.layers == model == show.layers.copy(), f"after step {step}: {what}"
        assert list(show.layers) == sorted(model)


def test_a_layer_is_looked_up_by_its_name():
    show = lamp()
    keys = show.layers["lamp"]
    show.insert_in_layer("lamp", Key(Wait, [], 5), 0)
    show.layers["lamp"] = keys[:2]
    assert keys == [Key(Wait, [], 5), Key(Transition, [0, 1], 10)]
    show.layers = {"bell": [Key(NoValue, [], 1)]}
    for use in (len, list, repr, keys.append, lambda keys: keys[0], lambda keys: keys.clear()):
        with pytest.raises(KeyError, match="lamp"):
            use(keys)
    show.layers["lamp"] = []
    assert keys == []


def test_edits_in_place_keep_the_keys():
    show = lamp()
    show.layers["lamp"] += [Key(Wait, [], 1)]
    show.layers["lamp"] *= 2
    assert show.layers["lamp"] == 2 * (lamp().layer("lamp") + [Key(Wait, [], 1)])
    show.layers |= {"bell": []}
    show.layers = show.layers
    assert show.names() == ["bell", "lamp"]


def test_what_is_put_in_is_copied():
    show, keys = Animation(), [Key(Wait, [], 1)]
    show.layers.update(a=keys, b=keys)
    show.layers["c"] = show.layers["a"]
    show.layers["a"].clear()
    keys.clear()
    assert show.layers == {"a": [], "b": [Key(Wait, [], 1)], "c": [Key(Wait, [], 1)]}
    show.layers.update(a=show.layers["b"], b=show.layers["a"])
    assert show.layers["b"] == []
    with pytest.raises(TypeError):
        show.layers.update(b=[Key(Wait, [], 2)], c=[None])
    assert show.layers["b"] == []


def test_the_last_layer_is_popped():
    show = Animation({"a": [], "b": [], "c": []})
    assert show.layers.popitem() == ("c", [])
    assert list(show.layers) == ["a", "b"]


def test_long_layers_are_shown_by_their_length():
    show = Animation({"a": [Key(Wait, [], 1)] * 100})
    assert repr(show.layers["a"]).count("Key(Wait, [], 1)") == 100
    show.layers["a"].append(Key(Wait, [], 1))
    assert repr(show.layers["a"]) == "<Layer of 101 keys>"
    assert repr(show.layers) == "<Layers of 101 keys>"
    assert repr(show) == "<Animation of 1 layers, 101 frames at 25 fps>"
