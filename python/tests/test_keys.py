import copy
import pickle
import struct

import numpy
import pytest
from animationmodel import Effect, Hold, Key, NoValue, Transition, Wait


class Named(Key):
    pass


def test_effects_are_an_enum():
    assert Key(Hold, [1], 5).effect is Hold
    assert Effect["Hold"] is Effect(1) is Hold
    assert list(Effect) == [Transition, Hold, NoValue, Wait]
    assert type(Key(7, [], 1).effect) is int
    assert pickle.loads(pickle.dumps(Wait)) is Wait


@pytest.mark.parametrize("key", [
    Key("Hold", [1], 5),
    Key(1, (numpy.float32(1),), numpy.int64(5)),
    Key(Hold, numpy.ones(1), 5),
    Key(duration=5, args=iter([1.0]), effect=Hold),
    Key(Hold, [1], 6).replace(duration=5),
    Key(Hold, [2], 5).replace(args=[1]),
    Key(Transition, [2, 3], 5).replace(effect=Hold, args=[1]),
    Key(Hold, [1], 5).__replace__(),
])
def test_keys_that_are_equal(key):
    assert key == Key(Hold, [1], 5)
    assert not key != Key(Hold, [1], 5)
    assert hash(key) == hash(Key(Hold, [1], 5))
    assert repr(key) == "Key(Hold, [1], 5)"


@pytest.mark.parametrize("other", [
    Key(Hold, [2], 5),
    Key(Hold, [1], 6),
    Key(Wait, [], 5),
    Key(7, [], 5),
    (Hold, (1.0,), 5),
    None,
])
def test_keys_that_differ(other):
    assert Key(Hold, [1], 5) != other
    assert not Key(Hold, [1], 5) == other


@pytest.mark.parametrize("effect", [-1, 4, 2**31 - 1])
def test_effects_without_a_name_are_numbers(effect):
    assert Key(effect, [], 5).effect == effect
    assert repr(Key(effect, [], 5)) == f"Key({effect}, [], 5)"


def test_zero_and_minus_zero_are_equal():
    assert len({Key(Hold, [0.0], 5), Key(Hold, [-0.0], 5)}) == 1


@pytest.mark.parametrize("value", [
    -0.0, 0.1, 7.0385307e-26, 3.4028235e38, 1e-45, float("inf"), float("-inf")
])
def test_repr_gives_the_same_bits(value):
    key = Key(Transition, [value, 0], 2**32 - 1)
    again = eval(repr(key))
    assert struct.pack("2f", *again.args) == struct.pack("2f", *key.args)
    assert repr(Key(Hold, [float("nan")], 1)) == "Key(Hold, [float('nan')], 1)"


@pytest.mark.parametrize("change", [
    lambda key: setattr(key, "duration", 6),
    lambda key: setattr(key, "args", [2]),
    lambda key: setattr(key, "effect", Wait),
    lambda key: setattr(key, "other", 1),
    lambda key: delattr(key, "duration"),
    lambda key: key.__init__(Wait, [], 1),
    lambda key: key.args.append(2),
])
def test_keys_never_change(change):
    key = Key(Hold, [1], 5)
    try:
        change(key)
    except AttributeError:
        pass
    assert key == Key(Hold, [1], 5)


def test_keys_can_be_matched():
    program = """
match key:
    case Key(Effect.Hold, (value,), frames):
        found = value, frames
"""
    names = {"key": Key(Hold, [1], 5), "Key": Key, "Effect": Effect}
    exec(program, names)
    assert names["found"] == (1, 5)


@pytest.mark.parametrize("protocol", range(-3, pickle.HIGHEST_PROTOCOL + 1))
def test_copies_keep_a_subclass_and_its_attributes(protocol):
    key = Named(-7, [], 5)
    key.comment = ["dims"]
    again = {-3: copy.copy, -2: copy.deepcopy, -1: Named.replace}.get(
        protocol, lambda key: pickle.loads(pickle.dumps(key, protocol))
    )(key)
    assert type(again) is Named
    assert again == key
    assert protocol == -1 or again.comment == ["dims"]


def test_keys_are_cut():
    key = Key(Transition, [0, 100], 10)
    assert key.split_at(3) == [Key(Transition, [0, 30], 3), Key(Transition, [30, 100], 7)]
    assert [piece.duration for piece in key.split_each(numpy.int8(4))] == [4, 4, 2]
    assert str(key) == "Transition (0, 100) over 10"


@pytest.mark.parametrize("call, error, text", [
    (lambda: Key("Hodl", [1], 5), ValueError,
     "effect has to be Transition, Hold, NoValue, Wait or an int, not 'Hodl'"),
    (lambda: Key(2**31, [], 5), ValueError,
     "effect has to be -2147483648 to 2147483647, not 2147483648"),
    (lambda: Key(2**70, [], 5), ValueError, "effect has to be -2147483648 to 2147483647"),
    (lambda: Key(None, [], 5), TypeError, "effect needs an Effect, its name or an int, not None"),
    (lambda: Key(Hold, 1, 5), TypeError, "args needs numbers, not an int"),
    (lambda: Key(Transition, [0, "1"], 5), TypeError, "args[1] needs a number, not a str"),
    (lambda: Key(Hold, [1e39], 5), ValueError,
     "args[0] has to be within the range of 32-bit floats"),
    (lambda: Key(Hold, [10**400], 5), ValueError,
     "args[0] has to be within the range of 32-bit floats"),
    (lambda: Key(Hold, [], 5), ValueError, "args: Could not set attributes of AnimationKeyCommand: "
     "the number of arguments does not correspond to the command (0 arguments given but 1 expected "
     "for command 1)"),
    (lambda: Key(Wait, [], 0), ValueError, "duration has to be 1 to 4294967295, not 0"),
    (lambda: Key(Wait, [], 10**400), ValueError, "duration has to be 1 to 4294967295"),
    (lambda: Key(Wait, [], 1.5), TypeError, "duration needs an int, not a float"),
    (lambda: Key(Wait, []), TypeError, "Key() missing required argument 'duration' (pos 3)"),
    (lambda: Key(Wait, [], 1).split_at(-1), ValueError, "frame has to be 0 to 4294967295, not -1"),
    (lambda: Key(Wait, [], 1).split_each("a"), TypeError, "step needs an int, not a str"),
])
def test_refusals(call, error, text):
    with pytest.raises(error) as raised:
        call()
    assert str(raised.value) == text
