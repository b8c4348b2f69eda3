"""The recipes of docs/cookbook.md. With a folder, writes what each of them makes into files there."""

# The cookbook begins here.
import copy

from animationmodel import Animation, Hold, Key, Playhead, Transition


def reversed_show(show):
    show = Animation(show.layers, show.outro_size, show.intro_size, show.fps)
    for keys in show.layers.values():
        keys[:] = [key.replace(args=key.args[::-1]) for key in reversed(keys)]
    return show


def there_and_back(show):
    show = Animation(show.layers, show.intro_size, show.outro_size, show.fps)
    show.push_back(reversed_show(show), keep_outro=True, keep_intro=True)
    return show


def along(curve, frames, error):
    def at(frame):
        return curve(frame / frames)

    def straight(begin, end):
        way = at(end) - at(begin)
        return all(abs(at(begin) + way * (frame - begin) / (end - begin) - at(frame)) <= error
                   for frame in range(begin, end))

    keys, begin = [], 0
    while begin < frames:
        end = begin + 1
        while end < frames and straight(begin, end + 1):
            end += 1
        keys.append(Key(Transition, [at(begin), at(end)], end - begin))
        begin = end
    return keys


def ease_in_and_out(x):
    return x * x * (3 - 2 * x)


def with_gamma(show, gamma, error):
    def bright(key):
        if key.effect == Hold:
            return [key.replace(args=[key.args[0] ** gamma])]
        if key.effect != Transition:
            return [key]
        first, last = key.args
        return along(lambda x: (first + (last - first) * x) ** gamma, key.duration, error)

    layers = {name: [new for key in keys for new in bright(key)]
              for name, keys in show.layers.items()}
    return Animation(layers, show.intro_size, show.outro_size, show.fps)


def staggered(keys, lamps, step):
    ring = Animation()
    one = Animation({"lamp": keys})
    frames = one.duration_in_frames()
    for lamp in range(lamps):
        before, after = one.split_at(frames - lamp * step % frames, False, False)
        ring.layers[f"lamp {lamp}"] = after.layer("lamp") + before.layer("lamp")
    return ring


def crossfaded(first, second, frames):
    begin = first.duration_in_frames() - frames
    mixed = Animation()
    for name in first.names():
        before = Animation({name: first.layers[name]}).sample(begin, frames)
        after = Animation({name: second.layers[name]}).sample(0, frames)
        for frame in range(frames):
            a, b = float(before[frame, 0]), float(after[frame, 0])
            value = a + (b - a) * (frame + 1) / (frames + 1)
            mixed.push_back_in_layer(name, Key(Hold, [value], 1))
    show, rest = copy.deepcopy(first), copy.deepcopy(second)
    show.remove(begin, frames)
    show.push_back(mixed, keep_outro=True, keep_intro=True)
    rest.remove(0, frames)
    show.push_back(rest, keep_outro=True, keep_intro=True)
    return show


def fade_colour(show, lamp, colour, to, frames):
    for name, first, last in zip(("red", "green", "blue"), colour, to):
        show.push_back_in_layer(f"{lamp} {name}", Key(Transition, [first, last], frames))


def snap(show, beat):
    fps = show.fps
    show.change_frame_rate(fps / beat)  # now a frame lasts a beat
    show.change_frame_rate(fps)


def override_softly(show, name, keys, frame, ramp):
    frames = Animation.duration_in_frames_of(keys) + 2 * ramp
    values = Animation({name: show.layers[name]}).sample()[:, 0]
    first, last = keys[0].args[0], keys[-1].args[-1]
    rise = Key(Transition, [values[frame], first], ramp)
    fall = Key(Transition, [last, values[frame + frames]], ramp)
    show.replace_in_layer(name, frame, frames, [rise, *keys, fall])


def joined(keys):
    result = []
    for key in keys:
        if result and result[-1].effect == key.effect:
            both = result[-1].replace(args=[*result[-1].args[:-1], *key.args[-1:]],
                                      duration=result[-1].duration + key.duration)
            if both.split_at(result[-1].duration) == [result[-1], key]:
                result[-1] = both
                continue
        result.append(key)
    return result


def snapshot_of(show, before):
    layers = {name: tuple(keys) for name, keys in show.layers.items()}
    for name, keys in before[0].items():
        if layers.get(name) == keys:
            layers[name] = keys
    return layers, show.intro_size, show.outro_size, show.fps


def restored(then):
    show = Animation()
    show.layers, show.intro_size, show.outro_size, show.fps = then
    return show


def stairs(steps, delay, fade):
    show = Animation()
    rest = (steps - 1) * delay  # from the first step to the last
    for step in range(steps):
        name = f"step {step}"
        show.insert_in_layer(name, Key(Transition, [0, 1], fade), step * delay)
        show.push_back_in_layer(name, Key(Hold, [1], rest + 1))  # the body is the one frame more
        show.push_back_in_layer(name, Key(Transition, [1, 0], fade))
    return Animation(show.layers, rest + fade, rest + fade)


def play(show, told):
    played = 0
    values = show.sample()
    head = Playhead(show)
    for frame in head:
        values[frame]  # what to send
        played += 1
        if told(played):
            head.finish()
    return played
# The cookbook ends here.


def made():
    """What each recipe makes, by its name."""
    fade = [Key(Transition, [0, 1], 10), Key(Hold, [1], 10)]
    pulse = [Key(Transition, [0, 1], 4), Key(Transition, [1, 0], 8), Key(Hold, [0], 8)]

    def lamp():
        return Animation({"lamp": fade})

    yield "lamp", lamp()
    yield "reversed", reversed_show(lamp())
    yield "there_and_back", there_and_back(lamp())
    yield "eased", Animation({"lamp": along(ease_in_and_out, 70, 0.01)})
    yield "gamma", with_gamma(lamp(), 2.2, 0.03)
    yield "staggered", staggered(pulse, 5, 4)
    yield "crossfaded", crossfaded(lamp(), Animation({"lamp": [Key(Hold, [0], 12)]}), 4)
    show = Animation()
    fade_colour(show, "lamp", (1, 0.5, 0), (0, 0.1, 1), 20)
    yield "colours", show
    show = lamp()
    show.insert_in_layer("lamp", Key(Hold, [0], 5), 7)
    snap(show, 8)
    yield "snapped", show
    show = lamp()
    override_softly(show, "lamp", [Key(Hold, [0], 6)], 6, 3)
    yield "softly", show
    show = lamp()
    show.remove_in_layer("lamp", 4, 0)
    show.layers["lamp"] = joined(show.layers["lamp"])
    yield "joined", show
    show = Animation({"bell": fade, "lamp": fade})
    first = snapshot_of(show, ({},))
    show.replace_in_layer("lamp", 5, 10, Key(Hold, [0], 10))
    second = snapshot_of(show, first)
    assert first[0]["bell"] is second[0]["bell"] and first[0]["lamp"] is not second[0]["lamp"]
    yield "edited", restored(second)
    yield "undone", restored(first)
    show = stairs(4, 5, 3)
    yield "stairs", show
    assert play(show, lambda played: played == 100) == 118


if __name__ == "__main__":
    import sys

    for name, show in made():
        print(name, show)
        if len(sys.argv) > 1:
            show.save(f"{sys.argv[1]}/{name}.json")
