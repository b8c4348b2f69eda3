#!/usr/bin/python3
"""picture-chromium.py PROGRAM: looks at a picture drawn by lightshow while it plays in Chromium, and
compares the colour of each lamp with what the channel sends at that time."""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile

from PIL import Image

# Milliseconds of its own time at which each copy of the picture is held; the last ones come round
# again. One more copy plays on.
TIMES = [0, 1, 300, 999, 1000, 1450, 2600, 4100, 5555, 7777, 12001]
PAGE = """<!DOCTYPE html><style>body {{ margin: 0; }} svg {{ display: block; }}</style>{copies}
<script>{times}.forEach((time, index) => {{
    const copy = document.querySelectorAll("svg")[index];
    copy.pauseAnimations();
    copy.setCurrentTime(time / 1000);
}});</script>"""


def screenshot(folder, page, width, height):
    """What Chromium shows after 1.5 s. Sometimes it does not end, and is tried again."""
    shot = folder / "shot.png"
    for attempt in range(4):
        command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                   f"--user-data-dir={folder}/profile{attempt}", "--virtual-time-budget=1500",
                   f"--window-size={width},{height}", f"--screenshot={shot}", page.as_uri()]
        browser = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True,
                                   env=os.environ | {"TMPDIR": str(folder)})
        try:
            browser.wait(timeout=30)
        except subprocess.TimeoutExpired:
            pass
        finally:
            if browser.poll() is None:
                os.killpg(browser.pid, signal.SIGKILL)
                browser.wait()
        if shot.exists():
            return Image.open(shot).convert("RGB")
    sys.exit("Chromium makes no screenshot")


def sent(recording, time):
    """What universe 1 has at a time, over and over."""
    lines = recording.read_text().split("\n")[1:-1]
    now = 0
    for values, wait in zip(lines[::2], lines[1::2]):
        now += int(wait)
        if time < now:
            return [int(value) for value in values.split(" ")[1].split(",")]
    return sent(recording, time - now)


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1)) # what was begun is ended
    program = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as name:
        folder = pathlib.Path(name)
        picture, recording, page = folder / "show.svg", folder / "show", folder / "page.html"
        subprocess.run([program, "--rotation", "255", "0", "1s", "1500", "400",
                        "--svg", picture, "--write", recording], check=True)
        drawn = picture.read_text()
        page.write_text(PAGE.format(copies=drawn * (len(TIMES) + 1), times=TIMES))
        width, height = map(int, re.search(r'viewBox="0 0 (\d+) (\d+)"', drawn).groups())
        lamps = [(int(x), int(y)) for x, y in re.findall(r'<circle cx="(\d+)" cy="(\d+)"', drawn)]
        colours = [tuple(map(int, c)) for c in re.findall(r"rgb\((\d+),(\d+),(\d+)\)", drawn)]
        dark, bright = min(colours), max(colours)
        shot = screenshot(folder, page, width, height * (len(TIMES) + 1))
        differences = []
        for index, time in enumerate(TIMES):
            for value, (x, y) in zip(sent(recording, time), lamps, strict=True):
                wanted = [d + (b - d) * value / 255 for d, b in zip(dark, bright)]
                got = shot.getpixel((x, y + index * height))
                differences.append(max(abs(w - g) for w, g in zip(wanted, got)))
                if differences[-1] > 2:
                    sys.exit(f"at {time} ms the lamp at {x}, {y} is {got}, not {wanted}")
        x, y = lamps[0]
        if shot.getpixel((x, y + len(TIMES) * height)) == dark:
            sys.exit("the picture does not play by itself")
        print(f"{len(differences)} lamps compared at {len(TIMES)} times, "
              f"the largest difference is {max(differences):.2f} of 255")


main()
