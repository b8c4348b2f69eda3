import math
import random
import threading
from fractions import Fraction

import numpy
import pytest
from animationmodel import Animation, Hold, Key, Playhead, Transition

GREATEST, LEAST = float(numpy.finfo(numpy.float32).max), 2.0**-149
RATES = "Frame rates ({} and {}) should be above 0 and finite to change them"
LASTS, WOULD_LAST = (f"Animation {lasts} 2147483648 frames or more"
                     for lasts in ("lasts", "would last"))


def any_show(seed):
    rng = random.Random(seed)
    show = Animation()
    for name in "abc":
        show.layers[name] = [Key(Hold, [rng.random()], rng.randint(1, 30))
                             for _ in range(rng.randrange(9))]
    show.intro_size, show.outro_size = rng.randrange(40), rng.randrange(40)
    return show


def moved(show, ratio):
    """What is expected: each boundary goes to the nearest frame, halves upwards."""
    def to(frame):
        return math.floor(frame * ratio + Fraction(1, 2))

    result, duration, outro = Animation(), show.duration_in_frames(), show.outro_size
    for name, keys in show.layers.items():
        ends = [sum(key.duration for key in keys[:count]) for count in range(len(keys) + 1)]
        lengths = [to(end) - to(begin) for begin, end in zip(ends, ends[1:])]
        result.layers[name] = [key.replace(duration=length)
                               for key, length in zip(keys, lengths) if length > 0]
    result.intro_size = to(show.intro_size)
    result.outro_size = to(outro) if outro > duration else to(duration) - to(duration - outro)
    return result


@pytest.mark.parametrize("before, after", [
    (25, 50), (50, 25), (30, 24), (24, 1000), (1000, 24), (0.5, 7), (29.97, 59.94),
    (LEAST, 2.0**-140), (GREATEST, 1), (3, 16777215), (7, 7),
])
def test_another_frame_rate_moves_boundaries_to_the_nearest_frames(before, after):
    for seed in range(20):
        show = any_show(seed)
        show.fps = before
        ratio = Fraction(float(numpy.float32(after))) / Fraction(float(numpy.float32(before)))
        expected = moved(show, ratio)
        expected.fps = after
        show.change_frame_rate(after)
        assert show == expected


@pytest.mark.parametrize("frames", [1, 7, 50, 1000])
def test_stretching_keeps_the_frame_rate(frames):
    for seed in range(20):
        show = any_show(seed)
        show.fps = 10
        expected = moved(show, Fraction(frames, show.duration_in_frames()))
        expected.fps = 10
        show.stretch_to(frames)
        assert show == expected


def test_layers_may_be_edited_while_they_are_sampled():
    flash = Key(Hold, [2], 5)
    show = Animation({"a": [Key(Transition, [0, 1], 1000)] * 2000})
    before = show.sample()
    stop = threading.Event()

    def edit():
        while not stop.is_set():
            show.layers["a"] = [flash] + show.layer("a")
            show.remove_in_layer("a", 0, 5)
            show.layers["b"] = [flash]
            del show.layers["b"]

    editor = threading.Thread(target=edit)
    editor.start()
    try:
        for _ in range(20):
            values = show.sample(0, len(before))[:, 0]
            shifted = numpy.concatenate([numpy.full(5, 2, numpy.float32), before[:-5, 0]])
            assert any(numpy.array_equal(values, whole) for whole in (before[:, 0], shifted))
    finally:
        stop.set()
        editor.join()


def held(*durations, fps=25):
    show = Animation()
    show.layers["a"] = [Key(Hold, [1], duration) for duration in durations]
    show.fps = fps
    return show


@pytest.mark.parametrize("show, change, said", [
    (held(4), lambda show: show.change_frame_rate(0), RATES.format(25, 0)),
    (held(4), lambda show: show.change_frame_rate(-1), RATES.format(25, -1)),
    (held(4), lambda show: show.change_frame_rate(math.inf), RATES.format(25, "inf")),
    (held(4), lambda show: show.change_frame_rate(math.nan), RATES.format(25, "nan")),
    (held(4, fps=0), lambda show: show.change_frame_rate(25), RATES.format(0, 25)),
    (held(2**30), lambda show: show.change_frame_rate(50), WOULD_LAST),
    (held(4, fps=LEAST), lambda show: show.change_frame_rate(GREATEST), WOULD_LAST),
    (held(2**31 - 1, 2**31 - 1, 7, fps=50), lambda show: show.change_frame_rate(25), LASTS),
    (held(4), lambda show: show.stretch_to(0), "An animation of 4 frames cannot last 0"),
    (held(), lambda show: show.stretch_to(3), "An animation of 0 frames cannot last 3"),
    (held(4), lambda show: show.stretch_to(2**31), WOULD_LAST),
    (held(2**31, 2**31), lambda show: show.stretch_to(9), LASTS),
])
def test_what_cannot_be_retimed_stays_as_it_was(show, change, said):
    before = show.to_json()
    with pytest.raises(ValueError) as raised:
        change(show)
    assert str(raised.value) == said
    assert show.to_json() == before


@pytest.mark.parametrize("show", [
    Animation(), Animation({"a": [Key(Transition, [0, 1], 4)]}),
])
def test_playheads_refuse_what_new_animations_refuse(show):
    show.intro_size = show.duration_in_frames() + 1
    with pytest.raises(ValueError, match="Intro size"):
        Playhead(show)
