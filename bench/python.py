"""Times keys and layers against frozen dataclasses in lists: script/python bench/python.py [KEYS]

A ratio of 2 is twice the time of the list. Each time is the best of several.
"""

import copy
import dataclasses
import sys
import timeit

from animationmodel import Animation, Hold, Key


@dataclasses.dataclass(frozen=True)
class Plain:
    effect: int
    args: tuple
    duration: int

    replace = dataclasses.replace


def loop(keys):
    for _ in keys:
        pass


def loop_by_index(keys):
    for index in range(len(keys)):
        keys[index]


def replace_each(keys):
    for index, key in enumerate(keys):
        keys[index] = key.replace(duration=2)


def insert_first(keys):
    keys.insert(0, keys[0])
    del keys[0]


def insert_first_with_all_held(keys):
    held = list(keys)
    insert_first(keys)
    return held


def replace_slice(keys):
    keys[5:6] = [keys[5]]


OF_LAYERS = {
    "loop": loop,
    "sum of durations": lambda keys: sum(key.duration for key in keys),
    "loop by index": loop_by_index,
    "replace each key": replace_each,
    "layer[:]": lambda keys: keys[:],
    "layer[5:6] = [key]": replace_slice,
    "insert(0, key), del [0]": insert_first,
    "the same, all keys held": insert_first_with_all_held,
    "reverse": lambda keys: keys.reverse(),
    "==": lambda keys: keys == keys[:],
    "copy.deepcopy": copy.deepcopy,
}


def best(call, *arguments):
    timer = timeit.Timer(lambda: call(*arguments))
    number = timer.autorange(lambda number, taken: None)[0]
    return min(timer.repeat(3, number)) / number


def main(count=100_000):
    ours = Animation({"lamp": [Key(Hold, [1], 5)] * count}).layers["lamp"]
    theirs = [Plain(Hold, (1.0,), 5) for _ in range(count)]
    times = {
        "create": [
            best(lambda: Key(Hold, [1.0], 5)),
            best(lambda: Plain(Hold, (1.0,), 5)),
        ]
    }
    for what, call in OF_LAYERS.items():
        times[what] = [best(call, ours), best(call, theirs)]
    print(f"{count} keys{'':17} layer, us    list, us    ratio")
    for what, (layer, plain) in times.items():
        print(f"{what:24} {layer * 1e6:10.2f}  {plain * 1e6:10.2f}  {layer / plain:7.2f}")


if __name__ == "__main__":
    main(*map(int, sys.argv[1:]))
