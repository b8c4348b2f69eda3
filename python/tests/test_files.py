import pytest
from animationmodel import Animation

SIZE = "needs a number of frames from 0 to 4294967295, not "
DURATION = "needs a number of frames from 1 to 4294967295, not "
NUMBER = 'needs a number within the floats\' range, "nan", "inf" or "-inf", '
EFFECT = ("needs Transition, Hold, NoValue, Wait or a number from -2147483648 to 2147483647, "
          "not ")


@pytest.mark.parametrize("text, said", [
    ('[]', 'needs an object with layers, not array'),
    ('{"fps": 25}', 'needs a member "layers"'),
    ('{"layer": {}, "layers": {}}',
     '/layer: no such member: these are fps, introSize, outroSize, layers, version and $schema'),
    ('{"version": 2, "keys": {}}', 'is of version 2, which this library does not know'),
    ('{"$schema": 5, "layers": {}}', '/$schema: needs the name of a schema, not 5'),
    ('{"layers": []}', '/layers: needs an object of layers, not array'),
    ('{"layers": {}, "introSize": -1}', '/introSize: ' + SIZE + '-1'),
    ('{"layers": {}, "outroSize": 4294967296}', '/outroSize: ' + SIZE + '4294967296'),
    ('{"layers": {}, "introSize": true}', '/introSize: ' + SIZE + 'true'),
    ('{"layers": {}, "introSize": 1.5}', '/introSize: ' + SIZE + '1.5'),
    ('{"layers": {}, "fps": null}', '/fps: ' + NUMBER + 'not null'),
    ('{"layers": {}, "fps": "9999999999999999999999999999999999999999999999999999999999"}',
     '/fps: ' + NUMBER + 'not "9999999999999999999999999999999999999999999999999999999999"'),
    ('{"layers": {}, "fps": "99999999999999999999999999999999999999999999999999999999999"}',
     '/fps: ' + NUMBER + 'not string'),
    ('{"layers": {"a/b": 1}}', '/layers/a~1b: needs an array of keys, not 1'),
    ('{"layers": {"a": [["Wait", [], 1], ["Wait", []]]}}',
     '/layers/a/1: needs an effect, its arguments and a number of frames, ["Hold", [1], 5]'),
    ('{"layers": {"a": [["Wait", [], 1, 2]]}}',
     '/layers/a/0: needs an effect, its arguments and a number of frames, ["Hold", [1], 5]'),
    ('{"layers": {"a": [["hold", [1], 1]]}}', '/layers/a/0/0: ' + EFFECT + '"hold"'),
    ('{"layers": {"a": [[2147483648,[],1]]}}', '/layers/a/0/0: ' + EFFECT + '2147483648'),
    ('{"layers": {"a": [[-2147483649,[],1]]}}', '/layers/a/0/0: ' + EFFECT + '-2147483649'),
    ('{"layers": {"a": [["Hold", 1, 1]]}}', '/layers/a/0/1: needs an array of arguments, not 1'),
    ('{"layers": {"a": [["Transition", [0, 1e39], 1]]}}',
     '/layers/a/0/1/1: ' + NUMBER + 'not 1e+39'),
    ('{"layers": {"a": [["Hold", ["NaN"], 1]]}}', '/layers/a/0/1/0: ' + NUMBER + 'not "NaN"'),
    ('{"layers": {"a": [["Hold", [1], [2]]]}}', '/layers/a/0/2: ' + DURATION + 'array'),
    ('{"layers": {"a": [["Wait", [], 0]]}}', '/layers/a/0/2: ' + DURATION + '0'),
    ('{"layers": {"a": [["Wait", [1], 1]]}}',
     '/layers/a/0/1: Wait: Could not set attributes of AnimationKeyCommand: the '
     'number of arguments does not correspond to the command (1 arguments given but 0 expected for command 3)'),
    ('{"layers":\n {,', "line 2, column 3: unexpected ','; expected string literal"),
    ('{\n "é": “}', 'line 2, column 7: invalid literal at "“" (\\u201c)'),
    ('{\xa0}', 'line 1, column 2: invalid literal at "\xa0" (\\u00a0)'),
    ('["\n',
     'line 1, column 3: invalid string: control character U+000A (LF) must be escaped '
     'to \\u000A or \\n at "\\n"'),
    ('["; last read: \'', 'line 1, column 17: invalid string: missing closing quote at the end'),
    ('{"layers": {}}\x00', 'line 1, column 15: unexpected "\\u0000"'),
    ('{"layers": {"a": [["Hold", [1e999], 1]]}}', "number overflow parsing '1e999'"),
    ('{"layers": {}, "fps": 1, "fps": 2}', '/fps: is there twice'),
    ('{"layers": {"a": [], "fps": [], "a": []}}', '/layers/a: is there twice'),
    ('[[], {"a": 1, "b": {"a": 2}, "a": 3}]', '/1/a: is there twice'),
    ("[" * 1000000 + "]" * 1000000, "needs an object with layers, not array"),
])
def test_files_that_hold_no_animation(text, said):
    with pytest.raises(ValueError) as raised:
        Animation.from_json(text)
    assert str(raised.value) == said
