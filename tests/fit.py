#!/usr/bin/python3
"""fit.py PROGRAM [COUNT]: has lightshow fit COUNT random shows (20 unless told), and compares what
the channels send at the start of every step before and after, cut anywhere, too. Then prints what
becomes of fades, chases and noise, which the guide has as a table."""

import json
import math
import os
import pathlib
import random
import sys
import tempfile

sys.dont_write_bytecode = True
from fseq import Program, Show, check, read, save, write

# What becomes of one layer: milliseconds a step, then its keys before and after.
TABLE = [
    # a ramp, and the Hold after it
    (10, "H0/10 H20/10 H40/10 H60/30", "T0,80/40 H60/20"),
    # from the byte of the first step, not from the value
    (10, "H0.4/10 H20/10 H40/10 H60/30", "T0,80/40 H60/20"),
    # rounded ramps: 1/3 a step
    (10, "H0/20 H1/30 H2/30 H3/20", "T0,3.5/100"),
    # a rest begins where a ramp cannot go on
    (10, "H0/1000 H1/10 H9/10", "H0/1000 T1,17/20"),
    # no value above 255
    (10, "H0/10 H100/10 H200/10 H255/10", "T0,200/20 H200/10 H255/10"),
    (10, "H0/10 H255/10 H0/10 H255/10", "H0/10 H255/10 H0/10 H255/10"),
    # what changes between two steps is gone, and so is the rest of a step
    (10, "H0/5 H9/1 H7/4 H0/25 H3/5", "H0/40"),
    # begins between two steps: with the byte of its first one
    (10, "N/5 H3/10 H5/10 N/10", "N/5 H3/10 H5/10 N/10"),
    (10, "N/5 H3/5 H4/10 H5/10 N/10", "N/5 T4,6/25 N/10"),
    # none of its frames is a step
    (10, "N/2 H3/2 H4/2 N/14", "N/2 H3/2 H4/2 N/14"),
    # a Wait keeps the last value, NoValue keeps none
    (10, "H0/10 H50/10 H100/10 N/10", "T0,150/30 N/10"),
    (10, "H0/10 H50/10 H100/10 W/10", "T0,100/20 H100/10 W/10"),
    (10, "H0/10 H50/10 H50/10 W/10 H9/20", "T0,100/20 H50/10 W/10 H9/20"),
    # a Transition that starts between two bytes is no longer one, and stays
    (10, "T0.5,100.5/1000", "T0.5,100.5/1000"),
    (10, "T0,50/100 T50,100/100", "T0,100/200"),
]
EFFECTS = {"H": "Hold", "T": "Transition", "N": "NoValue", "W": "Wait"}


def keys_of(text):
    keys = []
    for word in text.split():
        values, duration = word[1:].split("/")
        args = [float(value) for value in values.split(",") if value]
        keys.append([EFFECTS[word[0]], args, int(duration)])
    return keys


def text_of(keys):
    return " ".join(f"{effect[0]}{','.join(f'{value:g}' for value in args)}/{duration}"
                    for effect, args, duration in keys)


def write_json(name, layers):
    save(name, json.dumps({"fps": 1000, "layers": layers}).encode())


def layers_in(name):
    return json.loads(pathlib.Path(name).read_bytes())["layers"]


def count_in(name):
    return sum(len(keys) for keys in layers_in(name).values())


def check_table(program):
    for step, before, after in TABLE:
        write_json("in.json", {"1.1": keys_of(before)})
        status, text, _ = program.run("in.json", "--fit", "--step", str(step), "--write", "out.json")
        got = text_of(layers_in("out.json")["0001.001"]) if status == 0 else text
        check(got == after, f"--fit --step {step} of {before}: {got} instead of {after}")
    # a layer that ends before the show keeps the last value, too
    write_json("in.json", {"1.1": keys_of("H0/10 H50/10 H100/10"), "1.2": keys_of("H7/31")})
    program.run("in.json", "--fit", "--step", "10", "--write", "out.json")
    got = text_of(layers_in("out.json")["0001.001"])
    check(got.startswith("T0,100/20 H100/10"), f"--fit of a short layer: {got}")


def random_keys(rng, length):
    keys, left = [], length
    while left > 0:
        duration = min(left, rng.choice([1, 7, 20, 40, rng.randint(1, 400)]))
        effect = rng.choice(["Hold", "Hold", "Hold", "Transition", "Transition", "NoValue", "Wait"])
        values = {"Hold": 1, "Transition": 2}.get(effect, 0)
        value = rng.choice([lambda: rng.randrange(256), lambda: rng.uniform(0, 255)])
        near = [value() for _ in range(values)]
        if effect == "Hold" and keys and keys[-1][1]:
            near = [min(255, max(0, keys[-1][1][-1] + rng.randint(-3, 3)))]
        keys.append([effect, near, duration])
        left -= duration
    return keys


def silent_parts(keys):
    """Where there is no value: [begin, end, effect]."""
    parts, at = [], 0
    for effect, _, duration in keys:
        if effect in ("NoValue", "Wait"):
            parts.append([at, at + duration, effect])
        at += duration
    return parts


def check_random(program, rng, count):
    for i in range(count):
        step = rng.choice([1, 7, 25, 40])
        length = rng.randint(1, 3000)
        layers = {f"{c // 512 + 1:04}.{c % 512 + 1:03}": random_keys(rng, length) for c in range(8)}
        write_json("in.json", layers)
        options = ["--step", str(step)]
        before = read(program.makes("in.json", *options))
        after = read(program.makes("in.json", *options, "--fit", "--write", "fitted.json"))
        check(before == after, f"{i}: other bytes")
        for name, keys in layers_in("fitted.json").items():
            check(len(keys) <= len(layers[name]), f"{i}: more keys")
            check(silent_parts(keys) == silent_parts(layers[name]), f"{i}: other silent parts")
        again = program.run("fitted.json", "--fit", *options, "--write", "again.json")
        check(again[0] == 0 and layers_in("again.json") == layers_in("fitted.json"), f"{i}: again")
        cut = str(rng.randint(1, length))
        program.run("fitted.json", "--keep", "0", cut, "--write", "left.json")
        program.run("fitted.json", "--remove", "0", cut, "--write", "right.json")
        cut_show = read(program.makes("left.json", "--append", "right.json", *options))
        check(cut_show == before, f"{i}: other bytes after a cut at {cut}")


def fading(rng, steps):
    """Fades of a second or so, with rests between."""
    values = [0]
    while len(values) < steps:
        target, count = rng.randrange(256), rng.randint(5, 80)
        values += [round(values[-1] + (target - values[-1]) * i / count) for i in range(1, count)]
        values += [target] * rng.randint(1, 100)
    return bytes(values[:steps])


def waving(rng, steps):
    period = rng.randint(40, 400)
    return bytes(round(127.5 - 127.5 * math.cos(2 * math.pi * i / period)) for i in range(steps))


def compare_table(program):
    rng = random.Random(3)
    steps = 1200
    shows = {
        "fades and rests": [fading(rng, steps) for _ in range(50)],
        "sine waves": [waving(rng, steps) for _ in range(50)],
        "a chase": [bytes(255 if i // 4 % 50 == c else 0 for i in range(steps)) for c in range(50)],
        "noise": [rng.randbytes(steps) for _ in range(50)],
    }
    guide = pathlib.Path(__file__).with_name("..").joinpath("docs/guide.md").read_text("utf-8")
    for name, columns in shows.items():
        show = Show(dict(enumerate(columns)), 25)
        save("in.fseq", write(show, rng))
        data = program.makes("in.fseq", "--write", "in.json", "--fit", "--write", "out.json")
        program.run("in.fseq", "--write", "in.json")
        check(read(data) == show, f"{name}: other bytes")
        before, after = count_in("in.json"), count_in("out.json")
        row = f"| {name} | {before} | {after} |"
        print(row)
        check(row in guide, "docs/guide.md has another row")


def main():
    program = Program(str(pathlib.Path(sys.argv[1]).resolve()))
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        check_table(program)
        check_random(program, random.Random(2026), count)
        compare_table(program)
        os.chdir("/")


if __name__ == "__main__":
    main()
