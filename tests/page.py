#!/usr/bin/python3
"""page.py SITE BUILD: uses the page of a built site in Chromium, as people do, and compares what it
shows with what the library built in BUILD gives: programs are made of the lines of C++ and Python
that the page shows, and their JSON and pictures have to be the same, byte for byte."""

import functools
import http.server
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What operations are tried on: layers of unequal lengths, sizes, effects without values.
UNEQUAL = """{"fps": 30, "introSize": 5, "outroSize": 7, "layers": {
    "light": [["Transition", [0, 0.7], 10], ["NoValue", [], 3], ["Hold", [0.1], 9]],
    "status \\u00fc<&\\"": [["Hold", [2], 4]], "empty": []}}"""
OTHER = """{"introSize": 2, "outroSize": 1, "layers": {
    "bell": [["Wait", [], 2], ["Hold", [1], 3]], "light": [["Transition", [1, 0.2], 8]]}}"""
ODD = """{"fps": "nan", "introSize": 1, "layers": {"a\\u0000\\"\\\\?\\n": [["Hold", ["-inf"], 3],
    ["Hold", ["nan"], 2], [7, [], 4], ["Transition", [-0.0, 123456789], 1], ["Wait", [], 2]],
    "none": [], "tiny": [["Hold", [1e-45], 1], ["Transition", [3e38, 16777217], 4]]}}"""
# What leaves the values of ODD in it.
ODD_STAYS = ["insert", "insertInLayer", "replaceInLayer", "pushBackInLayer", "fillInLayer", "loop",
             "overrideLayersWith", "introSize", "stretch_to"]
RECORDING = "OLA Show\n1 0,255\n500\n1 80,255\n20\n2 7\n40\n"

# The parameters of each operation by their names in C++. Pieces and parts are numbers and words of
# the line itself.
FIELDS = {
    "replace": "start count", "insert": "frame", "pushBack": "keepOutro keepIntro",
    "remove": "start count", "overrideLayersWith": "frame",
    "replaceInLayer": "name start count keys", "insertInLayer": "name keys frame",
    "pushBackInLayer": "name keys", "removeInLayer": "name start count",
    "overrideLayerWith": "name keys frame", "fillInLayer": "name frames",
    "introSize": "introFrames outroFrames", "setFPSToFitDurationInSeconds": "seconds",
    "change_frame_rate": "fps", "stretch_to": "frames",
    "loop": "count repeatIntro repeatOutro", "splitAt": "frames keepIntro keepOutro piece",
    "splitEach": "step keepIntro keepOutro piece", "introBodyOutroLayers": "part",
    "Rotation": "pulseValue restValue riseDuration fallDuration stepDuration", "reset": "",
}
# What is typed into fields, beside small numbers. The first of each are greatest values.
TYPED = {
    "frames": ["4294967295", "0", "010", "08", "1e2", "-0", "7.0"],
    "float": ["3e38", "0", "-0", "0.30", "1e-3", "16777217", "123456789", "-7.5", "008",
              "0.100000000000000005551", "1e-45", "1234567890123456789012"],
    "list": ["4294967295", "", "0", "5, 15", "08,010", " 7 ", "3,3,1"],
    "layer": ["light", 'status \u00fc<&"', "new", "back\\slash\t", "\u2028\U0001f4a1"],
}

FILL = """
const [operation, values] = arguments;
const form = $("operation"), given = Object.entries(values);
$("choice").value = operation;
$("choice").dispatchEvent(new Event("change"));
for (const [name, value] of given) {
    const field = form.elements.namedItem(name);
    if (field.type === "checkbox")
        field.checked = value;
    else if (field.tagName === "SELECT")
        field.selectedIndex = value % field.length;
    else
        field.value = value;
    field.dispatchEvent(new Event("input"));
}
"""
APPLY = FILL + """
const before = $("text").value, code = $("code").textContent, began = performance.now();
form.requestSubmit();
const took = performance.now() - began, after = $("text").value;
const result = { code, after, took, refusal: $("refusal").textContent, svg: picture(),
    told: $("told").textContent };
if (after !== before)
    $("undo").click();
result.undone = $("text").value === before;
return result;
"""
HELPERS = """
const $ = id => document.getElementById(id);
const drawn = () => $("picture").shadowRoot.querySelector("svg:not(.marks)");
const plain = svg => svg?.outerHTML.replaceAll("\\n", "");
const picture = () => plain(drawn());
const set = (id, text) => {
    $(id).value = text;
    $(id).dispatchEvent(new Event("input"));
};
"""

# Takes the place of what draws, before the module says what that is.
NO_PICTURE = """
const fails = () => Error("no memory");
Object.defineProperty(Object.prototype, "picture", {
    set() {
        Object.defineProperty(this, "picture", {get: () => fails, set: () => {}});
    },
});
"""

PROGRAM = r"""
#include "Recording.h"
#include "Picture.h"
#include <animationmodel/play.h>
#include <animationmodel/retime.h>
#include <animationmodel/Rotation.h>
#include <animationmodel/json.h>
#include <fstream>
#include <iostream>
#include <limits>
using namespace Kiv;
using Line = void (*)(Animation& show, const Animation& other);
const char* const texts[] = {%(texts)s};
const Animation other = animation_from_json(R"x(%(other)s)x");
nlohmann::json shown(const Animation& show) {
    return {{"after", animation_to_json(show)}, {"svg", svg_of("Title", show)}, {"refusal", ""}};
}
nlohmann::json applied(const char* text, Line line) {
    Animation show = animation_from_json(text);
    try {
        line(show, other);
    } catch (const std::out_of_range&) {
        return {{"refusal", "there are fewer pieces"}};
    } catch (const std::exception& error) {
        return {{"refusal", error.what()}};
    }
    return shown(show);
}
%(programs)s
int main(int, char** argv) {
    nlohmann::json all;
    std::istringstream recording(R"x(%(recording)s)x");
    const Animation show = read_recording(recording, "recorded");
    all.push_back(shown(show));
    all.back()["values"] = sample(show.layers, 0, show.durationInFrames());
    %(cases)s
    std::ofstream(argv[1]) << all;
    %(calls)s
}
"""


def native(build, cases, programs=()):
    """What the library gives: first for a recording, then for each pair of the index of a text and
    a line of C++. And what each program prints, in JSON."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        lines = "\n".join(f"all.push_back(applied(texts[{index}], "
                          f"[](Animation& show, const Animation& other) {{ {line} }}));"
                          for index, line in cases)
        functions = "\n".join(
            program.replace("int main()", f"void program{index}()")
            .replace("std::cout << show << '\\n'", "std::cout << animation_to_json(show) << '\\0'")
            for index, program in enumerate(programs))
        calls = "".join(f"program{index}(); " for index in range(len(programs)))
        (folder / "page.cpp").write_text(PROGRAM % {
            "texts": ", ".join(f'R"x({text})x"' for text in TEXTS), "other": OTHER,
            "recording": RECORDING, "cases": lines, "programs": functions, "calls": calls})
        subprocess.run(["g++", "-std=c++20", "-I", ROOT / "include", "-I", ROOT / "view",
                        "-I", ROOT / "lights", folder / "page.cpp", "-o", folder / "page",
                        build / "lights/liblights.a", build / "view/libview.a",
                        "-L", build, "-lanimationmodel", f"-Wl,-rpath,{build}"], check=True)
        printed = subprocess.run([folder / "page", folder / "out"], check=True,
                                 capture_output=True, text=True).stdout
        return json.loads((folder / "out").read_text()), printed.split("\0")[:-1]


TEXTS = [UNEQUAL, OTHER]


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


def serve(site):
    handler = functools.partial(Quiet, directory=site)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_port}/"


def expect(truth, what):
    if not truth:
        sys.exit(f"page: {what}")


class Page:
    def __init__(self, address):
        options = webdriver.ChromeOptions()
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        for option in ["headless=new", "no-sandbox", "disable-gpu", "window-size=1280,900",
                       "force-prefers-reduced-motion"]: # does not play by itself
            options.add_argument("--" + option)
        service = webdriver.chrome.service.Service("/usr/bin/chromedriver")
        self.browser = webdriver.Chrome(service=service, options=options)
        self.browser.set_script_timeout(20)
        self.address = address
        self.open("index.html")

    def open(self, address):
        self.browser.get("about:blank")
        self.browser.get(self.address + address)
        self.wait(lambda: self.run("return document.body.dataset.ready !== undefined"))

    def run(self, script, *given):
        return self.browser.execute_script(HELPERS + script, *given)

    def find(self, name):
        return self.browser.find_element(By.ID, name)

    def wait(self, condition):
        WebDriverWait(self.browser, 20).until(lambda _: condition())

    def devtools(self, command, **given):
        return self.browser.execute_cdp_cmd(command, given)

    def size(self, width, height):
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height,
                      deviceScaleFactor=1, mobile=False)

    def type(self, name, text):
        self.run("$(arguments[0]).value = arguments[1]", name, text[:-1])
        self.find(name).send_keys(Keys.CONTROL + Keys.END + Keys.NULL, text[-1])

    def text(self):
        return self.run("return $('text').value")

    def title_and_text(self, title, text):
        self.run("set('title', arguments[0]); set('text', arguments[1])", title, text)

    def field(self, name):
        return self.run("return $('operation').elements.namedItem(arguments[0]).value", name)

    def plain(self, svg):
        """A picture as the page has it when it draws it anew."""
        return self.run("const made = document.createElement('div'); made.innerHTML = arguments[0];"
                        "return plain(made.firstElementChild)", svg)


def test_examples(page):
    names = page.run("return [...$('example').options].map(option => option.value).slice(1)")
    for name in names:
        page.open(f"index.html#example={name}")
        drawn = (ROOT / f"docs/{name}.svg").read_text()
        expect(page.run("return picture()") == page.plain(drawn),
               f"{name} is not drawn as in the documentation")
    print(f"{len(names)} examples are drawn as in the documentation")


def values_for(operation, choose):
    """What is typed into each field of an operation; `choose` takes one of several."""
    values = {}
    for name in FIELDS[operation].split():
        small = [str(choose(range(40)))] * 12
        if name.startswith(("keep", "repeat")):
            values[name] = choose([True, False])
        elif name in ["keys", "part"]:
            values[name] = choose(range(3))
        elif name == "name":
            values[name] = choose(TYPED["layer"])
        elif name in ["pulseValue", "restValue", "seconds", "fps"]:
            values[name] = choose(TYPED["float"] + small[:6])
        elif operation == "splitAt" and name == "frames":
            values[name] = choose(TYPED["list"])
        else: # loops and rotations of many frames take long where the page does not refuse them
            values[name] = choose(small if name == "count" or operation == "Rotation" else
                                  TYPED["frames"] + small)
    return values


def test_operations(page, build):
    page.open("index.html#example=guide-1")
    TEXTS[1] = page.text()
    page.run("set('other', arguments[0])", OTHER)
    chance = random.Random(7)
    results, cases = [], []
    for index, text in enumerate(TEXTS):
        page.title_and_text("Title", text)
        for operation in FIELDS:
            for _ in range(8 if FIELDS[operation] else 1):
                results.append(page.run(APPLY, operation, values_for(operation, chance.choice)))
                cases.append((index, results[-1]["code"]))
    expected, _ = native(build, cases)
    check_recording(page, expected[0])
    refused = 0
    for result, wanted, (_, line) in zip(results, expected[1:], cases, strict=True):
        expect(result["undone"], f"{line} is not undone")
        expect(bool(result["told"]) != bool(result["refusal"]),
               f"{line}: what is told is {result['told']!r}")
        if wanted["refusal"] == "there are fewer pieces":
            expect(result["refusal"].startswith("there are "), f"{line}: {result['refusal']}")
        else:
            expect(result["refusal"] == wanted["refusal"],
                   f"{line}: refused as {result['refusal']!r}, not {wanted['refusal']!r}")
        if not wanted["refusal"]:
            expect(result["after"] == wanted["after"],
                   f"{line} gives\n{result['after']}\nand not\n{wanted['after']}")
            expect(result["svg"] == page.plain(wanted["svg"]), f"{line} draws another picture")
            expect(result["told"] in wanted["svg"], f"{line} tells {result['told']}")
        refused += wanted["refusal"] != ""
    print(f"{len(cases)} lines of {len(FIELDS)} operations compared, {refused} of them refusals")


def check_recording(page, wanted):
    with tempfile.NamedTemporaryFile("w", suffix=".ola") as file:
        file.write(RECORDING)
        file.flush()
        page.find("open").send_keys(file.name)
        page.wait(lambda: page.run("return $('title').value.endsWith('.ola')"))
    got = page.text()
    expect(got == wanted["after"], f"a recording is read as\n{got}\nand not\n{wanted['after']}")
    count = len(json.loads(got)["layers"])
    for frame in [0, 499, 500, 559]:
        page.run("set('frame', arguments[0])", frame)
        got = page.run("return [...$('values').querySelectorAll('dd')].map(dd => dd.textContent)")
        row = wanted["values"][frame * count:(frame + 1) * count]
        expect(got == ["none" if value is None else f"{value:.6g}" for value in row],
               f"the values at {frame} are {got}, not {row}")


def test_refused_fields(page):
    """What a field cannot stand for is refused by its name, and nothing changes."""
    page.open("index.html#example=guide-1")
    rows = [("remove", "start", text) for text in ["", "-1", "1.5", "4294967296"]]
    rows += [("setFPSToFitDurationInSeconds", "seconds", text) for text in ["1e39", "-4e38"]]
    rows += [("splitAt", "frames", text) for text in ["5,", "x", "1 2", "5,-1"]]
    for operation, name, text in rows:
        result = page.run(APPLY, operation, {name: text})
        for what, words in [("refusal", f"^{name} needs "), ("code", rf"\b{name}\b")]:
            expect(re.search(words, result[what]), f"{name} {text!r}: {what} is {result[what]}")
        expect(page.run("return $('operation').elements.namedItem(arguments[0]).ariaInvalid",
                        name) == "true", f"{name} {text!r} is not marked")
    print(f"{len(rows)} values of fields refused")


def test_greatest(page):
    """The greatest values of fields give an answer, on animations long, empty and usual."""
    slowest = (0, "")
    giant = '{"layers": {"light": [["Wait", [], 4294967295]], "b": [["Hold", [1], 4294967295]]}}'
    for text in [UNEQUAL, '{"layers": {"light": []}}', giant]:
        page.open("index.html#example=guide-1")
        page.title_and_text("Title", text)
        for operation in FIELDS:
            for flag in [True, False]:
                values = values_for(operation, lambda list_: list_[0] if len(list_) > 2 else flag)
                values |= {name: "4294967295" for name in values
                           if name in ["count", "riseDuration", "fallDuration", "stepDuration"]}
                for step in ["4294967295", "1"]:
                    if "step" in values:
                        values |= {"step": step, "piece": "0"}
                    result = page.run(APPLY, operation, values)
                    expect(result["told"] or result["refusal"], f"{result['code']} tells nothing")
                    slowest = max(slowest, (result["took"], result["code"]))
        page.run("set('frame', $('frame').max)")
        expect("of" in page.find("at").text, "the last frame is not told")
    expect(slowest[0] < 5000, f"{slowest[1]} takes {slowest[0]:.0f} ms")
    print(f"with the greatest values, {slowest[1]} takes longest: {slowest[0]:.0f} ms")


def test_addresses(page):
    """Every operation opens by its address, with its fields named as in C++."""
    for operation, names in FIELDS.items():
        given = {name: "true" if name.startswith(("keep", "repeat")) else
                 "outro" if name == "part" else "bell" if name == "keys" else "3"
                 for name in names.split()}
        page.open("index.html#" + urllib.parse.urlencode({"operation": operation} | given))
        expect(page.run("return $('choice').value") == operation, f"{operation} is not chosen")
        got = page.run("return [...$('operation').elements].filter(field => field.name)"
                       ".map(field => field.name)")
        expect(sorted(got) == sorted(given), f"{operation} has the fields {got}")
        code = page.find("code").text
        words = code.replace("show.fill", "").replace('"', "")
        for value in given.values():
            expect(re.search(rf"\b{value}\b", words), f"{operation}: {value} is not in {code}")
            words = re.sub(rf"\b{value}\b", "", words, count=1)
        expect(re.search(rf"\b{operation}\b", code), f"{operation} is not in {code}")
        expect(page.run("return drawn() !== null"), f"#operation={operation} shows no picture")
    for name in ["explode", "constructor"]:
        page.open(f"index.html#operation={name}")
        told = page.find("told").text
        expect(f"no operation {name}" in told, f"{name} is taken for an operation: {told}")
    print(f"{len(FIELDS)} addresses of operations opened")


def test_programs(page, build):
    """Programs build what the page shows, after edits with two other animations."""
    chance = random.Random(11)
    programs, wanted = [], []
    for text in [ODD, UNEQUAL, TEXTS[1]]:
        page.open("index.html#example=guide-1")
        page.title_and_text("Title", text)
        kept = [name for name in FIELDS if text != ODD or name in ODD_STAYS]
        for number, operation in enumerate(chance.sample(kept * 2, 12)):
            page.run("set('other', arguments[0])", OTHER if number % 8 < 4 else UNEQUAL)
            page.run(FILL + "form.requestSubmit()", operation,
                     values_for(operation, chance.choice))
        page.find("title").send_keys("!") # which is no edit
        programs.append([])
        for language in ["cpp", "python"]:
            page.find(language).click()
            programs[-1].append(page.run("return $('program-text').value"))
            page.run("$('program').close()")
        wanted.append(page.text())
    _, printed = native(build, [], [cpp for cpp, _ in programs])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for index, (cpp, python) in enumerate(programs):
            expect(printed[index] == wanted[index],
                   f"this program gives\n{printed[index]}\nand not\n{wanted[index]}\n{cpp}")
            (folder / "page.py").write_text(python)
            got = subprocess.run([ROOT / "script/python", folder / "page.py"], check=True,
                                 stdout=subprocess.PIPE, text=True).stdout
            expect(got == wanted[index] + "\n",
                   f"this program gives\n{got}\nand not\n{wanted[index]}\n{python}")
        (folder / "alone.cpp").write_text(programs[1][0])
        subprocess.run(["g++", "-std=c++17", "-Wall", "-Werror", "-fsyntax-only", "-I",
                        ROOT / "include", folder / "alone.cpp"], check=True)
    print(f"{len(programs)} programs in C++ and in Python build what is shown")


def test_marks(page):
    """What an edit did is marked, and undoing it as well."""
    page.open("index.html")
    page.title_and_text("Two", '{"layers": {"a": [["Transition", [0, 1], 10]],'
                               '"b": [["Hold", [1], 10]], "c": [["Hold", [2], 3]]}}')
    seen = ("return [$('legend').textContent, ...['came', 'went', 'moved'].map(what =>"
            "$('picture').shadowRoot.querySelectorAll('.marks .' + what).length)]")
    legend = page.run(FILL + "form.requestSubmit();" + seen, "remove", {"start": 3, "count": 2})
    expect(legend == ["2 frames went5 frames moved", 0, 2, 2],
           f"removing is marked as {legend}")
    legend = page.run("$('undo').click();" + seen)
    expect(legend == ["2 frames came5 frames moved", 2, 0, 2],
           f"undoing is marked as {legend}")
    page.wait(lambda: page.run(seen) == ["", 0, 0, 0])
    page.open("index.html#example=demo") # whose Transitions are rounded where they are cut
    legend = page.run(FILL + "form.requestSubmit();" + seen, "remove", {"start": 10, "count": 2})
    expect(legend == ["2 frames went103 frames moved", 0, 8, 8], f"a cut is marked as {legend}")


def test_mistakes(page):
    page.open("index.html#example=guide-1")
    drawn, text = page.run("return [picture(), $('text').value]")
    rows = [(text[:-3], "line "), (text.replace("0.2]", "true]"), "/layers/status/0/1/1"),
            ('{ "layers": {\n  lamp: [] } }', "line 2, column 3"),
            ('{ "layers": {} }\n{}', "line 2, column 1")]
    for bad, place in rows:
        page.type("text", bad)
        told = page.find("mistake").text
        expect(place in told and "U+" not in told, f"a mistake is told as {told!r}")
        expect(page.run("return picture()") == drawn, "the last good picture is gone")
        expect(page.run("return $('fields').disabled"), "operations go on with a bad text")
    for _ in range(4):
        page.find("text").send_keys(Keys.CONTROL + "z")
    expect(page.text() == text, "typing is not undone")
    expect(page.find("mistake").text == "", "the mistake stays")


def test_link(page):
    page.title_and_text("A copy & more", UNEQUAL)
    page.run("set('other', arguments[0])", OTHER)
    page.run(FILL, "replaceInLayer", {"start": "21", "count": "4", "name": "new", "keys": 1})
    page.wait(lambda: all(word in page.browser.current_url for word in
                          ["animation=", "copy", "other=", "start=21", "keys=light"]))
    shown = "return ['text', 'title', 'other', 'code'].map(id => $(id).value ?? $(id).textContent)"
    before = page.run(shown)
    line = 'show.replaceInLayer("new", 21, 4, other.layer("light"));'
    expect(before == [UNEQUAL, "A copy & more", OTHER, line], f"what is shown is {before}")
    page.open(page.browser.current_url.removeprefix(page.address))
    expect(page.run(shown) == before, "a link opens something else")
    page.open("index.html#animation=broken&other=broken")
    told = page.find("told").text
    expect("animation and other" in told, f"a broken link is told as {told!r}")


def test_playing(page):
    page.open("index.html#example=guide-1&operation=insert")
    mark = page.run("const box = drawn().querySelector('.key').getBoundingClientRect();"
                    "return [box.left, box.right, box.top + 5]")
    both = "return [$('frame').value, $('operation').elements.namedItem('frame').value]"
    for place, frame in [(mark[0] + 1, 0), (mark[1] + 2, 20)]:
        action = webdriver.ActionChains(page.browser)
        action.w3c_actions.pointer_action.move_to_location(int(place), int(mark[2]))
        action.w3c_actions.pointer_action.click()
        action.perform()
        got = page.run(both)
        expect(got == [str(frame)] * 2, f"a click on frame {frame} gives {got}")
    page.find("frame").send_keys(Keys.RIGHT)
    expect(page.find("at").text == "Frame 21 of 80", "the slider's keys do not move it")
    page.find("play").click()
    page.wait(lambda: page.run("return Number($('frame').value)") not in (21, 22))
    page.find("play").click()
    shown, given = page.run(both)
    expect(shown == given, f"paused on {shown}, operations are at {given}")
    for rate in ["0", '"nan"', "1e-38"]:
        page.title_and_text("Still", f'{{"fps": {rate}, "layers": {{"a": [["Hold", [1], 9]]}}}}')
        page.run("set('frame', 0)")
        page.find("frame").send_keys(Keys.RIGHT, Keys.RIGHT)
        told = page.find("at").text
        expect(told == "Frame 2 of 9", f"at {rate} fps the slider is stuck: {told}")
        expect(page.run("return $('play').disabled") == (rate != "1e-38"), f"Play at {rate} fps")
    expect(page.run("set('text', '{\"layers\": {}}'); return $('play').disabled"), "no frame plays")


def test_first_view(page):
    """The eight lamps play, beside an operation with its line of C++."""
    page.browser.get("about:blank")
    page.devtools("Emulation.setEmulatedMedia", features=[
        {"name": "prefers-reduced-motion", "value": "no-preference"}])
    page.open("index.html")
    page.wait(lambda: page.run("return Number($('frame').value) > 1"))
    expect(page.run("return drawn().querySelectorAll('circle').length") == 8, "no eight lamps")
    expect(page.find("code").text == "show = show.loop(2, false, false);", "no line of C++")
    page.devtools("Emulation.setEmulatedMedia", features=[])


def test_typed(page):
    """What was typed stays, and each field undoes what was typed there."""
    page.open("index.html#example=guide-1&operation=remove")
    start = page.browser.find_element(By.NAME, "start")
    start.send_keys(Keys.CONTROL + "a" + Keys.NULL, "33")
    page.run("set('frame', 12)")
    expect(page.field("start") == "33", "the slider overwrites what was typed")
    start.send_keys(Keys.CONTROL + "z")
    start.send_keys(Keys.CONTROL + "z")
    expect(page.field("start") != "33", "Ctrl+Z in a field does not undo it")
    start.send_keys(Keys.CONTROL + "a" + Keys.NULL, "34", Keys.ENTER)
    after = page.text()
    expect(page.run("return !$('undo').disabled"), "Enter applies nothing")
    start.send_keys(Keys.CONTROL + "z")
    expect(page.text() == after, "Ctrl+Z in a field undoes the edit")
    start.send_keys(Keys.CONTROL + "a" + Keys.NULL, "35")
    page.run(FILL, "insert", {})
    expect(page.field("frame") == "12", "an untouched field does not follow the slider")
    page.run(FILL, "replace", {})
    expect(page.field("start") == "35", "what was typed is lost in another operation")
    page.run("$('operation').requestSubmit()") # adds the layer bell
    page.run(FILL, "removeInLayer", {})
    expect(page.field("name") == "status", f"operations go to the layer {page.field('name')}")
    expect(page.run("return $('example').value") == "", "an edit is still called the example")


def test_layout(page):
    """The picture, an operation, its line and its button are in sight together."""
    inside = """
        const sides = element => {
            const { top, bottom } = element.getBoundingClientRect();
            return [top, bottom];
        };
        const widths = [document.documentElement, ...document.querySelectorAll("main *")].map(
            element => element.getBoundingClientRect().right);
        return { picture: sides(drawn()), wide: Math.max(...widths),
            operation: ["controls", "apply", "code"].map(id => sides($(id))) };
    """
    for width, height in [(1366, 700), (400, 800)]:
        page.size(width, height)
        page.open("index.html")
        if width == 400:
            page.run("document.scrollingElement.scrollTop = "
                     "$('choice').getBoundingClientRect().top - "
                     "document.querySelector('.picture').getBoundingClientRect().height - 8")
        for operation in FIELDS:
            got = page.run(FILL + "form.requestSubmit(); $('undo').click();" + inside,
                           operation, {})
            top, bottom = got["picture"]
            limit = bottom if width == 400 else 0
            expect(top >= 0 and bottom <= height and got["wide"] <= width,
                   f"{width} x {height}: the picture is at {got}")
            for top, bottom in got["operation"]:
                expect(limit <= top and bottom <= height,
                       f"{operation}, {width} x {height}: not all is in sight: {got}")
    print(f"{len(FIELDS)} operations are in sight with the picture")


def test_large(page):
    page.open("index.html")
    for layers, keys in [(1, 10), (8, 125), (8, 1250), (201, 1)]:
        row = json.dumps([["Hold", [0.5], 3], ["Transition", [0.1, 0.3], 5]] * (keys // 2 or 1))
        text = json.dumps({"layers": {f"lamp {i}": json.loads(row) for i in range(layers)}})
        took = page.run("set('text', arguments[0]);"
                        "const at = arguments[0].lastIndexOf('0.5'), times = [];"
                        "for (let i = 0; i < 5; ++i) {"
                        "    $('text').setRangeText('0.' + (2 + i), at, at + 3);"
                        "    const begin = performance.now();"
                        "    $('text').dispatchEvent(new Event('input'));"
                        "    document.body.getBoundingClientRect();"
                        "    times.push(performance.now() - begin);"
                        "}"
                        "return Math.min(...times)", text)
        drawn = page.run("return $('undrawn').textContent === ''")
        expect(drawn == (layers <= 200), f"{layers} layers: drawn is {drawn}")
        print(f"{layers * keys} keys in {layers} layers are redrawn in {took:.0f} ms")
    many = json.dumps({"layers": {f"lamp {i}": [] for i in range(100000)}})
    for second in [False, True]:
        page.run("set(arguments[1] ? 'other' : 'text', arguments[0])", many, second)
        told = page.run("return $('mistake').textContent + $('other-mistake').textContent")
        expect(told == "", f"100000 layers: {told}")
    page.run("set('text', '{\"layers\": {\"a\": [[\"Hold\", [1], 1]]}}')")
    refusal = page.run(FILL + "form.requestSubmit(); return $('refusal').textContent",
                       "loop", {"count": "4294967295"})
    expect("more than this page edits" in refusal, f"a loop without end is told as {refusal!r}")


def test_access(page):
    """Controls have names, text stands out from its ground, and nothing is wider than the page."""
    for address in ["index.html#example=guide-8", "docs/guide.html"]:
        for scheme in ["light", "dark"]:
            page.devtools("Emulation.setEmulatedMedia", features=[
                {"name": "prefers-color-scheme", "value": scheme},
                {"name": "prefers-reduced-motion", "value": "reduce"}])
            for width in [1280, 800, 380]:
                page.size(width, 900)
                page.browser.get("about:blank")
                page.browser.get(page.address + address)
                time.sleep(1)
                wide = page.run("return document.documentElement.scrollWidth")
                expect(wide <= width, f"{address} is {wide} pixels wide in {width}")
            least, where = min(page.run(CONTRAST))
            expect(least >= 4.5, f"{address}, {scheme}: contrast {least:.2f} in {where!r}")
            print(f"{address}, {scheme}: the least contrast is {least:.2f}")
    controls = 0
    for operation in ["replaceInLayer", "splitAt"]:
        page.open(f"index.html#operation={operation}")
        roles = {"button", "textbox", "checkbox", "slider", "combobox", "spinbutton", "link", "img",
                 "listbox"}
        for node in page.devtools("Accessibility.getFullAXTree")["nodes"]:
            role = node.get("role", {}).get("value")
            if role in roles:
                expect(node["name"]["value"], f"a {role} has no name")
                controls += 1
    print(f"{controls} controls have names")


CONTRAST = """
const parts = colour => colour.match(/[\\d.]+/g).map(Number);
const light = colour => parts(colour).slice(0, 3).map(part => part / 255).map(part =>
    part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)
    .reduce((sum, part, index) => sum + part * [0.2126, 0.7152, 0.0722][index], 0);
const ground = element => {
    for (; element; element = element.parentElement) {
        const colour = getComputedStyle(element).backgroundColor;
        if (parts(colour).length < 4 || parts(colour)[3] > 0.9)
            return colour;
    }
    return "rgb(255, 255, 255)";
};
const shown = [...document.querySelectorAll("body *")].filter(element =>
    element.checkVisibility() && !element.closest(":disabled, script, style") &&
    [...element.childNodes].some(node => node.nodeType === Node.TEXT_NODE && node.data.trim()));
return shown.map(element => {
    const both = [light(getComputedStyle(element).color), light(ground(element))];
    return [(Math.max(...both) + 0.05) / (Math.min(...both) + 0.05),
        element.textContent.slice(0, 40)];
});
"""


def test_failures(page, site):
    """What fails says so. The console tells of it, too."""
    def told(name, words, what):
        page.wait(lambda: page.find(name).text != "")
        text = page.find(name).text
        expect(words in text, f"{what} is told as {text!r}")

    page.devtools("Network.enable")
    page.devtools("Network.setCacheDisabled", cacheDisabled=True)
    page.open("index.html#example=guide-1")
    text = page.text()
    page.devtools("Network.emulateNetworkConditions", offline=True, latency=0,
                  downloadThroughput=0, uploadThroughput=0)
    page.run("$('example').value = 'guide-2'; $('example').dispatchEvent(new Event('change'))")
    told("told", "did not load", "an example without a network")
    expect(page.text() == text, "an example that did not load changes the animation")
    page.devtools("Network.emulateNetworkConditions", offline=False, latency=0,
                  downloadThroughput=-1, uploadThroughput=-1)
    page.devtools("Network.setBlockedURLs", urls=["*guide-2.json", "*animationmodel.wasm"])
    page.browser.get("about:blank")
    page.browser.get(page.address + "index.html")
    page.wait(lambda: "did not load" in page.find("missing").text)
    page.browser.get((site / "index.html").as_uri())
    told("missing", "opened as a file", "a page that is a file")
    page.devtools("Network.setBlockedURLs", urls=[])
    script = page.devtools("Page.addScriptToEvaluateOnNewDocument", source=NO_PICTURE)
    page.open("index.html")
    told("undrawn", "There is no picture: no memory", "a picture that fails")
    expect(page.run("return $('picture').shadowRoot") is None, "what could not be drawn is there")
    expect("layers" in page.text(), "without a picture there is no animation")
    page.devtools("Page.removeScriptToEvaluateOnNewDocument", **script)
    page.open("index.html#example=none")
    told("told", "no example none", "an example that is not there")
    expect("layers" in page.text(), "there is no animation at all")


def main():
    site, build = (pathlib.Path(given).resolve() for given in sys.argv[1:])
    size = (site / "animationmodel.wasm").stat().st_size
    expect(size < 500000, f"the module has {size} bytes")
    page = Page(serve(site))
    try:
        test_examples(page)
        test_operations(page, build)
        test_refused_fields(page)
        test_greatest(page)
        test_addresses(page)
        test_programs(page, build)
        test_marks(page)
        test_mistakes(page)
        test_link(page)
        test_playing(page)
        test_first_view(page)
        test_typed(page)
        test_layout(page)
        test_large(page)
        test_access(page)
        said = page.browser.get_log("browser")
        expect(not said, f"the console says {said}")
        test_failures(page, site)
        print(f"The module has {size} bytes; the console is empty")
    finally:
        page.browser.quit()


main()
