#!/usr/bin/python3
"""fseq.py PROGRAM [COUNT], or fseq.py --inputs FOLDER.

The former has lightshow read, edit and write COUNT random rendered shows (.fseq), and as many that
are corrupted, and compares every byte with what a reader and writer of its own say. COUNT is 100
unless told. The latter only writes small files of all kinds."""

import ctypes
import ctypes.util
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import zlib

NONE, ZSTD, ZLIB = range(3)
MOST_FRAMES = 2**31 - 1


class Broken(Exception):
    """What the reader here does not take."""


class Zstd:
    """The library, of which Debian has a copy everywhere."""

    def __init__(self):
        self.library = ctypes.CDLL("libzstd.so.1")
        for name in "ZSTD_compressBound", "ZSTD_compress", "ZSTD_decompress":
            getattr(self.library, name).restype = ctypes.c_size_t

    def pack(self, data, level):
        bound = self.library.ZSTD_compressBound(ctypes.c_size_t(len(data)))
        place = ctypes.create_string_buffer(bound)
        size = self.library.ZSTD_compress(
            place, ctypes.c_size_t(bound), data, ctypes.c_size_t(len(data)), level)
        return place.raw[:size]

    def unpack(self, data, size):
        place = ctypes.create_string_buffer(size + 1)
        got = self.library.ZSTD_decompress(
            place, ctypes.c_size_t(size), data, ctypes.c_size_t(len(data)))
        if got != size:
            raise Broken("zstd")
        return place.raw[:size]


zstd = Zstd()


class Show:
    """A value for each step of each channel."""

    def __init__(self, columns, step, media=b""):
        self.columns = columns
        self.step = step
        self.media = media

    def __eq__(self, other):
        return vars(self) == vars(other)

    def steps(self):
        return len(next(iter(self.columns.values())))

    def edited(self, edit):
        columns = {channel: edit(channel, values) for channel, values in self.columns.items()}
        return Show(columns, self.step, self.media)


def number(data, at, size):
    return int.from_bytes(data[at:at + size], "little")


def ranges_of(channels):
    """[first, count] of neighbours."""
    ranges = []
    for channel in sorted(channels):
        if ranges and channel == sum(ranges[-1]):
            ranges[-1][1] += 1
        else:
            ranges.append([channel, 1])
    return ranges


def variable(code, data):
    return struct.pack("<H", len(data) + 4) + code + data


def blocks_of(rows, packing, rng):
    """A table of blocks and what they hold."""
    table, packed, begin = b"", b"", 0
    while begin < len(rows):
        if rng.random() < 0.2:
            table += struct.pack("<II", rng.randrange(9), 0)
        end = begin + rng.randint(1, len(rows))
        data = b"".join(rows[begin:end])
        if packing == ZLIB:
            block = zlib.compress(data, rng.randint(0, 9))
        else:
            cut = rng.choice([0, 0, rng.randrange(len(data) + 1)])
            pieces = [data[:cut], data[cut:]] if cut else [data]
            block = b"".join(zstd.pack(piece, rng.choice([1, 3, 19])) for piece in pieces)
        table += struct.pack("<II", begin, len(block))
        packed += block
        begin = end
    return table + bytes(8 * rng.choice([0, 0, 1, 3, 300])), packed


def write(show, rng, version=None, packing=None):
    """The bytes of a file, of a random kind unless told."""
    version = rng.choice([(1, 0), (2, 0), (2, 1), (2, 2)]) if version is None else version
    ranges = ranges_of(show.columns)
    dense = len(ranges) == 1 and ranges[0][0] == 0
    if version[0] == 1 and not dense:
        version = (2, 0)
    if version[0] == 1:
        packing = NONE
    elif packing is None:
        packing = rng.randrange(3)
    if dense and rng.random() < 0.8:
        ranges = []
    elif rng.random() < 0.3:
        rng.shuffle(ranges)
    order = [c for first, count in ranges for c in range(first, first + count)] or sorted(show.columns)
    rows = [bytes(show.columns[c][i] for c in order) for i in range(show.steps())]
    table, data = blocks_of(rows, packing, rng) if packing else (b"", b"".join(rows))
    sparse = b"".join(struct.pack("<I", r[0])[:3] + struct.pack("<I", r[1])[:3] for r in ranges)
    fixed = 28 if version[0] == 1 else 32
    begin = fixed + len(table) + len(sparse)
    headers = [variable(b"mf", show.media + b"\0")] if show.media else []
    headers += rng.sample([variable(b"sp", b"a sequencer\0"), variable(b"zz", b"?" * 9),
                           variable(b"ED", b"xy" + struct.pack("<QI", 3, 4))], rng.randrange(3))
    rng.shuffle(headers)
    head = b"".join(headers) + bytes(rng.choice([0, 0, 1, 2, 3, 7]))
    if version[0] == 1:
        end = struct.pack("<HHBBH", 0, 0, 1, 2, 0)
    else:
        count = len(table) // 8
        end = struct.pack("<BBBBQ", packing | count >> 8 << 4, count & 255, len(ranges), 0,
                          rng.getrandbits(64))
    return (b"PSEQ" + struct.pack("<HBBHIIBB", begin + len(head), version[1], version[0], begin,
                                  len(order), show.steps(), show.step, 0)
            + end + table + sparse + head + data)


def unpack(table, data, packing, width, steps):
    """The channel data."""
    blocks = [struct.unpack("<II", table[i:i + 8]) for i in range(0, len(table), 8)]
    blocks = [block for block in blocks if block[1] > 0]
    begins = [begin for begin, _ in blocks]
    ends = begins[1:] + [steps]
    if sum(size for _, size in blocks) > len(data) or (begins[:1] or [steps])[0] != 0:
        raise Broken("blocks")
    if any(begin >= end for begin, end in zip(begins, ends)):
        raise Broken("order of blocks")
    result = b""
    for (begin, size), end in zip(blocks, ends):
        packed, data = data[:size], data[size:]
        expected = (end - begin) * width
        if expected > 10**7:
            raise Broken("more than the tests have")
        if packing == ZSTD:
            result += zstd.unpack(packed, expected)
            continue
        stream = zlib.decompressobj()
        try:
            result += stream.decompress(packed)
        except zlib.error as error:
            raise Broken(error) from error
        if not stream.eof or stream.unused_data or len(result) != end * width:
            raise Broken("zlib")
    return result


def read(data):
    """The show in a file. Raises Broken if there is none."""
    if len(data) < 28 or data[:4] != b"PSEQ" or data[7] not in (1, 2) or data[6] > 2:
        raise Broken("no such file")
    fixed = 28 if data[7] == 1 else 32
    begin, tables_end = number(data, 4, 2), number(data, 8, 2)
    width, steps, step = number(data, 10, 4), number(data, 14, 4), data[18]
    if begin < fixed or len(data) < begin or width == 0 or step == 0 or steps * step > MOST_FRAMES:
        raise Broken("header")
    packing, blocks, sparse = NONE, 0, 0
    if data[7] == 2:
        packing, blocks, sparse = data[20] & 15, data[21] | data[20] >> 4 << 8, data[22]
    sparse_begin = fixed + 8 * blocks
    if sparse_begin + 6 * sparse > tables_end or tables_end > begin or packing > 2:
        raise Broken("tables")
    if width * 200 > (32 << 20) + 19 * width * steps:
        raise Broken("too much for its steps")
    rest = data[begin:]
    if packing:
        rest = unpack(data[fixed:sparse_begin], rest, packing, width, steps)
    if len(rest) < width * steps:
        raise Broken("channel data")
    order = []
    for i in range(sparse):
        first, count = (number(data, sparse_begin + 6 * i + k, 3) for k in (0, 3))
        if len(order) + count > width:
            raise Broken("ranges")
        order += range(first, first + count)
    order = order if sparse else list(range(width))
    if len(order) != width or len(set(order)) != width:
        raise Broken("ranges")
    media, at = b"", tables_end
    while begin - at >= 4 and 4 <= number(data, at, 2) <= begin - at:
        if data[at + 2:at + 4] == b"mf":
            media = data[at + 4:at + number(data, at, 2)].split(b"\0")[0]
        at += number(data, at, 2)
    return Show({c: rest[i:width * steps:width] for i, c in enumerate(order)}, step, media)


def random_show(rng, channels=None, steps=None):
    """Channels that rest, fade or flicker."""
    if channels is None:
        first = rng.choice([0, 0, 0, 7, 510, 70000, 2**24 - 700])
        channels = {first + i for i in range(rng.randint(1, 40))}
        if rng.random() < 0.4:
            channels |= {first + rng.randrange(600) for _ in range(rng.randrange(1, 30))}
    steps = rng.randint(1, 40) if steps is None else steps

    def column():
        kind = rng.randrange(3)
        if kind == 0:
            return bytes([rng.randrange(256)]) * steps
        if kind == 1:
            return bytes(i * 255 // steps for i in range(steps))
        return bytes(rng.choice([0, 7, 255]) for _ in range(steps))

    media = rng.choice([b"", b"song.mp3", "Gl\u00fcck \u266a.wav".encode()])
    return Show({channel: column() for channel in channels}, rng.choice([1, 20, 25, 50, 255]), media)


class Program:
    """lightshow, in a folder of its own."""

    def __init__(self, path):
        self.path = path
        with open(path, "rb") as file:
            self.sanitized = b"__asan_init" in file.read()

    def run(self, *words):
        """Status, what was said, and the KiB of memory that were taken at once."""
        with tempfile.TemporaryFile() as said:
            process = subprocess.Popen([self.path, *words], stdout=said, stderr=said)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            said.seek(0)
            text = said.read().decode(errors="backslashreplace")
            return process.returncode, text, 0 if self.sanitized else usage.ru_maxrss

    def makes(self, *words):
        status, text, _ = self.run(*words, "--write", "out.fseq")
        if status != 0:
            sys.exit(f"lightshow {words}: status {status}, {text}")
        return pathlib.Path("out.fseq").read_bytes()


def save(name, data):
    pathlib.Path(name).write_bytes(data)


def check(condition, what):
    if not condition:
        sys.exit(what)


def check_written(data, show, what):
    """That a file has exactly what a show has, as version 2.0 without packing."""
    check(read(data) == show, f"{what}: other bytes")
    check(data[6:8] == b"\0\2" and data[20:22] == b"\0\0", f"{what}: another version")
    ranges = ranges_of(show.columns)
    sparse = 0 if len(ranges) == 1 and ranges[0][0] == 0 else len(ranges)
    check(data[22] == sparse, f"{what}: {data[22]} ranges, not {sparse}")
    begin = number(data, 4, 2)
    check(begin % 4 == 0, f"{what}: data from {begin} on")
    check(len(data) == begin + show.steps() * len(show.columns), f"{what}: {len(data)} bytes")


def random_edit(rng, show):
    """Words, and the show that they make."""
    steps, step = show.steps(), show.step
    kind = rng.choice(["keep", "remove", "loop", "insert", "append", "nothing"])
    if kind in ("keep", "remove"):
        begin = rng.randrange(steps)
        end = rng.randint(begin + 1, steps)
        words = [f"--{kind}", str(begin * step), str(end * step)]
        if kind == "keep":
            return words, show.edited(lambda _, v: v[begin:end])
        return words, show.edited(lambda _, v: v[:begin] + v[end:])
    if kind == "loop":
        intro = rng.randint(0, steps)
        outro = rng.randint(0, steps - intro)
        count = rng.randint(1, 4)
        words = ["--intro", str(intro * step), "--outro", str(outro * step), "--loop", str(count)]
        return words, show.edited(
            lambda _, v: v[:intro] + v[intro:steps - outro] * count + v[steps - outro:])
    if kind == "nothing":
        return [], show
    other = random_show(rng, set(show.columns))
    other.step = step
    save("other.fseq", write(other, rng))
    at = rng.randint(0, steps) if kind == "insert" else steps
    words = ["--insert", "other.fseq", str(at * step)] if kind == "insert" else ["--append",
                                                                                "other.fseq"]
    return words, show.edited(lambda c, v: v[:at] + other.columns[c] + v[at:])


def check_edits(program, rng, count):
    for i in range(count):
        show = random_show(rng)
        save("in.fseq", write(show, rng))
        check(read(pathlib.Path("in.fseq").read_bytes()) == show, "the tests' own files")
        words, expected = random_edit(rng, show)
        check_written(program.makes("in.fseq", *words), expected, f"{i}: {words}")
        if i % 10 == 0:  # by way of another kind of file, whose universes begin with channel 1
            program.run("in.fseq", "--write", "in.json")
            data = program.makes("in.json", "--step", str(show.step))
            check_written(data, Show(show.columns, show.step), f"{i}: by JSON")
            program.run("in.fseq", "--write", "recorded")
            got = read(program.makes("recorded", "--step", str(show.step))).columns
            check(all(got[c] == show.columns.get(c, bytes(show.steps())) for c in got)
                  and set(show.columns) <= set(got), f"{i}: by a recording")


def corrupted(rng, data):
    data = bytearray(data)
    for _ in range(rng.choice([1, 1, 2, 5])):
        at = rng.choice([rng.randrange(min(40, len(data))), rng.randrange(len(data))])
        kind = rng.randrange(5)
        if kind == 0:
            data[at] = rng.choice([0, 1, 127, 128, 255, rng.randrange(256)])
        elif kind == 1:
            data[at] ^= 1 << rng.randrange(8)
        elif kind == 2:
            del data[at:at + rng.choice([1, 2, len(data)])]
        elif kind == 3:
            data[at:at] = rng.randbytes(rng.choice([1, 4, 100]))
        else:
            data[at:at + 4] = struct.pack("<I", rng.choice([0, 2**31 - 1, 2**32 - 1]))
        if len(data) == 0:
            data = bytearray(b"P")
    return bytes(data)


def check_corrupted(program, rng, count):
    refused = 0
    for i in range(count):
        data = b"PSEQ" + corrupted(rng, write(random_show(rng), rng))[4:]
        save("in.fseq", data)
        save("out.fseq", b"before")
        status, text, memory = program.run("in.fseq", "--write", "out.fseq")
        out = pathlib.Path("out.fseq").read_bytes()
        try:
            show = read(data)
        except Broken as broken:
            refused += 1
            check(status == 2, f"corrupted {i}: status {status}, {broken}, {text}")
            check(text.startswith("lightshow: in.fseq: ") and text.count("\n") == 1,
                  f"corrupted {i}: says {text}")
            check(out == b"before", f"corrupted {i}: is refused and writes")
            check(memory < 64 << 10, f"corrupted {i}: takes {memory} KiB")
            continue
        size = len(show.columns) * show.steps()
        check(memory < (64 << 10) + 40 * size // 1024, f"corrupted {i}: takes {memory} KiB")
        if max(show.columns) >= 2**24 - 1:
            check(status == 2 and "channel 512 of universe 32768" in text, f"corrupted {i}: {text}")
            continue
        check(status == 0, f"corrupted {i}: status {status}, {text}")
        check(read(out) == show, f"corrupted {i}: other bytes")
    return refused


def plain(rows=(b"\1\2", b"\1\3", b"\1\3"), step=50, media=b""):
    return Show({i: bytes(row[i] for row in rows) for i in range(len(rows[0]))}, step, media)


def patched(data, *patches):
    """The bytes with others from some places on: (place, bytes)."""
    data = bytearray(data)
    for place, patch in patches:
        data[place:place + len(patch)] = patch
    return bytes(data)


def packed(block, packing, begins=(0,), channels=2, steps=3):
    """A file in which that block stands for each of some steps."""
    begin = 32 + 8 * len(begins)
    header = struct.pack("<HBBHIIBBBBBBQ", begin, 0, 2, begin, channels, steps, 25, 0, packing,
                         len(begins), 0, 0, 0)
    table = b"".join(struct.pack("<II", begin, len(block)) for begin in begins)
    return b"PSEQ" + header + table + block * len(begins)


def sparse(*ranges, channels=4):
    table = b"".join(struct.pack("<I", number)[:3] for pair in ranges for number in pair)
    begin = 32 + len(table)
    return (b"PSEQ" + struct.pack("<HBBHIIBBBBBBQ", begin, 0, 2, begin, channels, 1, 25, 0, 0, 0,
                                  len(ranges), 0, 0) + table + bytes(channels))


def check_refusals(program):
    rng = random.Random(1)
    data = write(plain(), rng, (2, 0), NONE)[:32] + b"\1\2\1\3\1\3"
    data = patched(data, (4, b"\x20\0"), (8, b"\x20\0"), (22, b"\0"))
    check(read(data) == plain(), "the tests' own file")
    three = zlib.compress(b"\1\2\1\3\1\3")
    four = zlib.compress(b"\1\2\1\3\1\3\1\3")
    stream = zlib.compressobj()
    bomb = b"".join(stream.compress(bytes(10**6)) for _ in range(200)) + stream.flush()
    rows = [
        (b"PSE", 'the file is cut short'),
        (b"PSET" + data[4:], 'a file of a rendered show begins with "PSEQ"'),
        (data[:20], "the file is cut short"),
        (data[:-1], "the file is cut short: 1 bytes are missing"),
        (patched(data, (6, b"\3")), "files of version 1 and 2.0 to 2.2 can be read, not of 2.3"),
        (patched(data, (7, b"\3")), "files of version 1 and 2.0 to 2.2 can be read, not of 3.0"),
        (patched(data, (7, b"\0")), "files of version 1 and 2.0 to 2.2 can be read, not of 0.0"),
        (patched(data, (4, b"\x1f")), "the channel data begin inside the header"),
        (patched(data, (8, b"\x1f")), "the tables do not end before the channel data"),
        (patched(data, (8, b"\x21")), "the tables do not end before the channel data"),
        (patched(data, (21, b"\1")), "the tables do not end before the channel data"),
        (patched(data, (10, b"\0")), "there are no channels"),
        (patched(data, (18, b"\0")), "a step lasts 0 milliseconds"),
        (patched(data, (14, b"\0\0\0\x80"), (18, b"\1")),
         "the show lasts longer than 2147483647 milliseconds"),
        (patched(data, (20, b"\3")), "the channel data are packed in an unknown way, 3"),
        (patched(data, (13, b"\x7f"), (14, b"\1")),
         "the file is cut short: 2130706428 bytes are missing"),
        (patched(data, (20, b"\2")), "there are no blocks"),
        (packed(three, ZLIB, [1]), "the blocks are out of order"),
        (packed(three, ZLIB, [0, 2, 1]), "the blocks are out of order"),
        (packed(three, ZLIB, [0, 1, 1]), "the blocks are out of order"),
        (packed(three, ZLIB, steps=0), "a block begins after the last step"),
        (packed(three[:-1], ZLIB), "block 0: it ends inside the stream of zlib"),
        (packed(three + b"\0", ZLIB), "block 0: more follows the stream of zlib"),
        (packed(b"\0" + three, ZLIB), "block 0: incorrect header check"),
        (packed(zlib.compress(b"\1\2"), ZLIB), "block 0: it holds less than its steps"),
        (packed(four, ZLIB), "block 0: it holds more than its steps"),
        (packed(bomb, ZLIB), "block 0: it holds more than its steps"),
        (packed(zstd.pack(bytes(10**6), 1) * 200, ZSTD), "block 0: it holds more than its steps"),
        (packed(zstd.pack(bytes(6), 1)[:-1], ZSTD), "block 0: it ends inside a frame of zstd"),
        (packed(zstd.pack(bytes(6), 1) + b"\0", ZSTD), "block 0: Unknown frame descriptor"),
        (packed(zstd.pack(bytes(5), 1), ZSTD), "block 0: it holds less than its steps"),
        (packed(b"\0" * 9, ZSTD), "block 0: Unknown frame descriptor"),
        (sparse((0, 2), (1, 2)), "the ranges overlap"),
        (sparse((5, 3), (5, 1)), "the ranges overlap"),
        (sparse((5, 3)), "the ranges have 3 channels, and a step has 4"),
        (packed(three, ZLIB, channels=2000, steps=1000001),
         "2000002000 bytes of channel data are more than 2 GB, which --no-limit allows"),
        (patched(data, (10, struct.pack("<II", 4000000000, 0))),
         "4000000000 channels of 0 steps take much memory, which --no-limit allows"),
    ]
    for data, said in rows:
        save("in.fseq", data)
        save("out.fseq", b"before")
        status, text, memory = program.run("in.fseq", "--write", "out.fseq")
        check((status, text) == (2, f"lightshow: in.fseq: {said}\n"), f"{said}: {status}, {text}")
        check(pathlib.Path("out.fseq").read_bytes() == b"before", f"{said}: is refused and writes")
        check(memory < 64 << 10, f"{said}: takes {memory} KiB")


def check_words(program):
    """The step and the name of the media file, names of pieces, pipes, gaps."""
    rng = random.Random(2)
    first = plain(media=b"song.mp3")
    save("first.fseq", write(first, rng))
    save("second.fseq", write(plain(step=20, media=b"other.mp3"), rng))
    save("recorded", b"OLA Show\n1 1,2\n50\n1 1,3\n100\n")
    check_written(program.makes("recorded"), plain([b"\1\2"] * 2 + [b"\1\3"] * 4, 25), "a step of 25")
    check_written(program.makes("recorded", "--step", "60"),
                  plain([b"\1\2"] + [b"\1\3"] * 2, 60), "one that begins before the end")
    check_written(program.makes("first.fseq", "--append", "second.fseq", "--remove", "150", "1s"),
                  first, "the first one of two")
    check_written(program.makes("recorded", "--append", "second.fseq", "--append", "first.fseq",
                                "--keep", "0", "100"),
                  plain([b"\1\2"] * 3 + [b"\1\3"] * 2, 20, b"other.mp3"), "the first one read")
    one = Show({0: b"\7\7"}, 50)  # while it plays, the other channel keeps what it has
    save("one.fseq", write(one, rng))
    check_written(program.makes("first.fseq", "--insert", "one.fseq", "50"),
                  plain([b"\1\2", b"\7\2", b"\7\2", b"\1\3", b"\1\3"], media=b"song.mp3"),
                  "a channel that waits")
    check_written(program.makes("first.fseq", "--append", "one.fseq"),
                  plain([b"\1\2", b"\1\3", b"\1\3", b"\7\3", b"\7\3"], media=b"song.mp3"),
                  "a channel that ends before the show")
    program.run("first.fseq", "--split", "100", "part.fseq", "--split", "100", "part.json")
    check_written(pathlib.Path("part1.fseq").read_bytes(), first.edited(lambda _, v: v[:2]), "part 1")
    check_written(pathlib.Path("part2.fseq").read_bytes(), first.edited(lambda _, v: v[2:]), "part 2")
    check(pathlib.Path("part2.json").exists() and not pathlib.Path("part3.fseq").exists(), "parts")
    with open("first.fseq", "rb") as file:
        piped = subprocess.run([program.path, "/dev/stdin", "--write", "out.fseq"], check=True,
                               stdin=subprocess.Popen(["cat"], stdin=file,
                                                      stdout=subprocess.PIPE).stdout)
    check(piped.returncode == 0, "a pipe")
    check_written(pathlib.Path("out.fseq").read_bytes(), first, "a pipe")
    # more gaps than a file has ranges: the narrow ones are filled
    channels = [2 * i for i in range(300)] + [5000]
    layers = ",".join(f'"{c // 512 + 1}.{c % 512 + 1}": [["Hold", [7], 1]]' for c in channels)
    save("gaps.json", f'{{"layers": {{{layers}}}}}'.encode())
    got = read(program.makes("gaps.json", "--step", "40"))
    wanted = {c: b"\7" if c in channels else b"\0" for c in [*range(599), 5000]}
    check(got == Show(wanted, 40), "gaps")
    values = '[["Hold", [254.5], 1], ["Hold", [300], 1], ["Hold", [-1], 1], ["NoValue", [], 1]]'
    save("values.json", f'{{"layers": {{"1.1": {values}}}}}'.encode())
    check_written(program.makes("values.json", "--step", "40"),
                  Show({0: bytes([255, 255, 0, 0])}, 40), "values")
    for name, said in [("0.1", "universe 0 has no place in the file of a rendered show"),
                       ("32768.512", "the file of a rendered show has no channel 512 of universe "
                        "32768, and none after it, where any before is left out")]:
        save("far.json", f'{{"layers": {{"{name}": []}}}}'.encode())
        got = program.run("far.json", "--write", "far.fseq")[:2]
        check(got == (2, f"lightshow: {said}\n"), f"{name}: {got}")
        check(not pathlib.Path("far.fseq").exists(), f"{name}: is refused and written")


def check_large(program, channels, steps):
    """That a show in which every byte changes takes no more memory than it may."""
    header = struct.pack("<HBBHIIBBBBBBQ", 32, 0, 2, 32, channels, steps, 25, 0, 0, 0, 0, 0, 0)
    step = random.Random(5).randbytes(channels)
    other = bytes(value ^ 1 for value in step)
    data = b"PSEQ" + header + (step + other) * (steps // 2)
    save("large.fseq", data)
    status, text, memory = program.run("large.fseq", "--write", "out.fseq")
    what = f"{channels} channels, {steps} steps"
    check(status == 0, f"{what}: {text}")
    check(pathlib.Path("out.fseq").read_bytes()[32:] == data[32:], f"{what}: other bytes")
    check(memory < (64 << 10) + 40 * channels * steps // 1024, f"{what}: takes {memory} KiB")


def write_inputs(folder):
    rng = random.Random(4)
    for i in range(40):
        show = random_show(rng, range(i % 7, i % 7 + rng.randint(1, 9)), rng.randint(1, 9))
        save(folder / str(i), write(show, rng, packing=i % 3))


def main():
    if sys.argv[1] == "--inputs":
        write_inputs(pathlib.Path(sys.argv[2]))
        return
    program = Program(str(pathlib.Path(sys.argv[1]).resolve()))
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 100
    rng = random.Random(2026)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        check_refusals(program)
        check_words(program)
        check_large(program, 2000, 500)
        check_large(program, 300000, 10)
        check_edits(program, rng, count)
        refused = check_corrupted(program, rng, count)
        os.chdir("/")
    print(f"{count} shows edited and compared, {count} corrupted, {refused} of which are refused")


if __name__ == "__main__":
    main()
