#!/usr/bin/python3
"""page.py SITE BUILD: uses the page of a built site in Chromium, as people do, and compares what it
shows with what the library built in BUILD gives: a program is made of the lines of C++ that the page
shows, and its JSON and pictures have to be the same, byte for byte."""

import functools
import http.server
import json
import pathlib
import subprocess
import sys
import tempfile
import threading
import time

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
RECORDING = "OLA Show\n1 0,255\n500\n1 80,255\n20\n2 7\n40\n"

# What is typed into the controls of every operation, one column after the other.
VALUES = {"number": ["0", "7", "25"], "float": ["0", "0.3", "-7.5"], "cuts": ["0", "5, 15", "7"],
          "name": ["light", "status", "new"]}

APPLY = """
const [index, number, values] = arguments;
const form = document.querySelectorAll("#operations form")[index];
for (const control of form.elements) {
    const kind = control.step === "any" ? "float" : control.type === "number" ? "number" : control.name;
    if (control.name === "piece")
        control.value = 1;
    else if (control.type === "checkbox")
        control.checked = number % 2 === 1;
    else if (kind in values)
        control.value = values[kind][number];
    else if (control.tagName === "SELECT")
        control.selectedIndex = number % control.length;
}
form.dispatchEvent(new Event("input"));
const before = $("text").value;
form.requestSubmit();
const after = $("text").value, refusal = $("refusal").textContent;
const fresh = document.createElement("div");
fresh.innerHTML = svg;
fresh.firstChild.pauseAnimations();
const result = { code: form.querySelector("code").textContent, after, refusal, svg,
    told: $("told").textContent,
    whole: fresh.innerHTML.replaceAll("\\n", "") === drawn.outerHTML.replaceAll("\\n", "") };
if (after !== before)
    $("undo").click();
result.undone = $("text").value === before;
return result;
"""

PROGRAM = r"""
#include "Recording.h"
#include "Picture.h"
#include <animationmodel/play.h>
#include <animationmodel/Rotation.h>
#include <animationmodel/json.h>
#include <fstream>
using namespace Kiv;
nlohmann::json shown(const Animation& show) {
    std::vector<float> values(show.layers.size() * show.durationInFrames());
    sample(show.layers, 0, show.durationInFrames(), values.data());
    return {{"after", animation_to_json(show)}, {"svg", svg_of("Title", show)}, {"refusal", ""},
            {"values", values}};
}
template <class Line>
nlohmann::json applied(const char* text, const Line& line) {
    Animation show = animation_from_json(text);
    try {
        line(show, animation_from_json(R"x(%(other)s)x"));
    } catch (const std::out_of_range&) {
        return {{"refusal", "there are fewer pieces"}};
    } catch (const std::exception& error) {
        return {{"refusal", error.what()}};
    }
    return shown(show);
}
int main(int, char** argv) {
    nlohmann::json all;
    std::istringstream recording(R"x(%(recording)s)x");
    all.push_back(shown(read_recording(recording, "recorded")));
    %(cases)s
    std::ofstream(argv[1]) << all;
}
"""


def native(build, cases):
    """What the library gives for each pair of a text and a line of C++, after a recording."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        lines = "\n".join(f'all.push_back(applied(R"x({text})x", '
                          f"[](Animation& show, const Animation& other) {{ {line} }}));"
                          for text, line in cases)
        (folder / "page.cpp").write_text(
            PROGRAM % {"other": OTHER, "recording": RECORDING, "cases": lines})
        subprocess.run(["g++", "-std=c++20", "-I", ROOT / "include", "-I", ROOT / "view",
                        "-I", ROOT / "lights", folder / "page.cpp", "-o", folder / "page", build / "lights/liblights.a",
                        build / "view/libview.a",
                        "-L", build, "-lanimationmodel", f"-Wl,-rpath,{build}"], check=True)
        subprocess.run([folder / "page", folder / "out"], check=True)
        return json.loads((folder / "out").read_text())


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
        self.address = address
        self.open("index.html")

    def open(self, address):
        self.browser.get("about:blank")
        self.browser.get(self.address + address)
        self.wait(lambda: self.run("return document.body.dataset.ready !== undefined"))

    def run(self, script, *given):
        return self.browser.execute_script(script, *given)

    def find(self, name):
        return self.browser.find_element(By.ID, name)

    def wait(self, condition):
        WebDriverWait(self.browser, 20).until(lambda _: condition())

    def type(self, name, text):
        self.run("$(arguments[0]).value = arguments[1]", name, text[:-1])
        self.find(name).send_keys(Keys.CONTROL + Keys.END + Keys.NULL, text[-1])


def test_examples(page):
    names = page.run("return [...$('example').options].map(option => option.value).slice(1)")
    for name in names:
        page.open(f"index.html#example={name}")
        drawn = (ROOT / f"docs/{name}.svg").read_text()
        expect(page.run("return svg") == drawn, f"{name} is not drawn as in the documentation")
    print(f"{len(names)} examples are drawn as in the documentation")


def test_operations(page, build):
    count = page.run("return document.querySelectorAll('#operations form').length")
    page.type("other", OTHER)
    results, cases = [], []
    for text in [UNEQUAL, (page.run("return $('text').value"))]:
        page.type("title", "Title")
        page.type("text", text)
        for index in range(count):
            for number in range(3):
                results.append(page.run(APPLY, index, number, VALUES))
                cases.append((text, results[-1]["code"]))
    expected = native(build, cases)
    check_recording(page, expected[0])
    refused = 0
    for result, wanted, (_, line) in zip(results, expected[1:], cases, strict=True):
        expect(result["undone"], f"{line} is not undone")
        expect(result["whole"], f"{line} leaves another picture than it draws")
        expect(result["told"] in result["svg"] and bool(result["told"]) != bool(result["refusal"]),
               f"{line}: what is told is {result['told']!r}")
        if wanted["refusal"] == "there are fewer pieces":
            expect(result["refusal"].startswith("there are "), f"{line}: {result['refusal']}")
        else:
            for what in ["refusal"] if wanted["refusal"] else ["refusal", "after", "svg"]:
                expect(result[what] == wanted[what],
                       f"{line}: {what} is\n{result[what]}\nand not\n{wanted[what]}")
        refused += wanted["refusal"] != ""
    print(f"{len(cases)} results of {count} operations compared, {refused} of them refusals")


def check_recording(page, wanted):
    with tempfile.NamedTemporaryFile("w", suffix=".ola") as file:
        file.write(RECORDING)
        file.flush()
        page.find("open").send_keys(file.name)
        page.wait(lambda: page.run("return $('title').value.endsWith('.ola')"))
    got = page.run("return $('text').value")
    expect(got == wanted["after"], f"a recording is read as\n{got}\nand not\n{wanted['after']}")
    names = page.run("return show.names()")
    for frame in [0, 499, 500, 559]:
        page.run("pick(arguments[0])", frame)
        got = page.run("return [...$('values').querySelectorAll('dd')].map(dd => dd.textContent)")
        row = wanted["values"][frame * len(names):(frame + 1) * len(names)]
        expect(got == ["none" if value is None else f"{value:.6g}" for value in row],
               f"the values at {frame} are {got}, not {row}")


def test_mistakes(page):
    page.open("index.html#example=guide-1")
    drawn, text = page.run("return [svg, $('text').value]")
    for bad, place in [(text[:-3], "line 1"), (text.replace("0.2]", "true]"), "/layers/status/0/1/1")]:
        page.type("text", bad)
        told = page.find("mistake").text
        expect(place.replace("line 1", "line ") in told, f"a mistake is told as {told!r}")
        expect(page.run("return svg") == drawn, "the last good picture is gone")
        expect(page.run("return $('operations').disabled"), "operations go on with a bad text")
    page.find("text").send_keys(Keys.CONTROL + "z")
    page.find("text").send_keys(Keys.CONTROL + "z")
    expect(page.run("return $('text').value") == text, "typing is not undone")
    expect(page.find("mistake").text == "", "the mistake stays")


def test_link(page):
    page.type("title", "A copy & more")
    page.type("text", UNEQUAL)
    page.wait(lambda: "animation=" in page.browser.current_url and "copy" in page.browser.current_url)
    link = page.browser.current_url
    page.open(link.removeprefix(page.address))
    expect(page.run("return [$('text').value, $('title').value]") == [UNEQUAL, "A copy & more"],
           "a link opens something else")


def test_playing(page):
    page.open("index.html#example=guide-1")
    mark = page.run("const box = drawn.querySelector('.key').getBoundingClientRect();"
                    "return [box.left, box.right, box.top + 5]")
    both = "return [$('frame').value, document.querySelector('[name=frame]').value]"
    for place, frame in [(mark[0] + 1, 0), (mark[1] + 2, 20)]:
        action = webdriver.ActionChains(page.browser)
        action.w3c_actions.pointer_action.move_to_location(place, mark[2])
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


def test_fields(page):
    page.open("index.html#example=guide-1")
    page.run("document.querySelector('#operations form').requestSubmit()") # adds the layer bell
    layer, example = page.run("return [document.querySelector('[name=name]').value, $('example').value]")
    expect(layer == "status", f"operations go from the layer status to {layer}")
    expect(example == "", f"an edit is still called the example {example}")


def test_large(page):
    for layers, keys in [(1, 10), (8, 125), (8, 1250), (201, 1)]:
        row = json.dumps([["Hold", [0.5], 3], ["Transition", [0.1, 0.3], 5]] * (keys // 2 or 1))
        text = json.dumps({"layers": {f"lamp {i}": json.loads(row) for i in range(layers)}})
        took = page.run("setText(arguments[0]);"
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
    page.run("setText('{\"layers\": {\"a\": [[\"Hold\", [1], 1]]}}')")
    refusal = page.run("const loop = [...document.querySelectorAll('#operations form')].find("
                       "form => form.textContent.startsWith('Loop'));"
                       "loop.elements.count.value = 4294967295; loop.requestSubmit();"
                       "return $('refusal').textContent")
    expect("more than this page edits" in refusal, f"a loop without end is told as {refusal!r}")


def test_access(page):
    """Every control has a name, text stands out from its ground, and nothing is wider than the page."""
    for address in ["index.html#example=guide-8", "docs/guide.html"]:
        for scheme in ["light", "dark"]:
            page.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
                "features": [{"name": "prefers-color-scheme", "value": scheme}]})
            for width in [1280, 800, 380]:
                page.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                    "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
                page.browser.get("about:blank")
                page.browser.get(page.address + address)
                time.sleep(1)
                wide = page.run("return document.documentElement.scrollWidth")
                expect(wide <= width, f"{address} is {wide} pixels wide in {width}")
            least, where = min(page.run(CONTRAST))
            expect(least >= 4.5, f"{address}, {scheme}: contrast {least:.2f} in {where!r}")
            print(f"{address}, {scheme}: the least contrast is {least:.2f}")
    page.open("index.html")
    tree = page.browser.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
    roles = {"button", "textbox", "checkbox", "slider", "combobox", "spinbutton", "link", "img"}
    controls = [node for node in tree if node.get("role", {}).get("value") in roles]
    for node in controls:
        expect(node["name"]["value"], f"a {node['role']['value']} has no name")
    print(f"{len(controls)} controls have names")


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
const shown = [...document.querySelectorAll("body *")].filter(element => element.checkVisibility() &&
    !element.closest(":disabled") && element.tagName !== "SCRIPT" && element.tagName !== "STYLE" &&
    [...element.childNodes].some(node => node.nodeType === Node.TEXT_NODE && node.data.trim()));
return shown.map(element => {
    const both = [light(getComputedStyle(element).color), light(ground(element))];
    return [(Math.max(...both) + 0.05) / (Math.min(...both) + 0.05), element.textContent.slice(0, 40)];
});
"""


def main():
    site, build = (pathlib.Path(given).resolve() for given in sys.argv[1:])
    size = (site / "animationmodel.wasm").stat().st_size
    expect(size < 500000, f"the module has {size} bytes")
    page = Page(serve(site))
    try:
        test_examples(page)
        test_operations(page, build)
        test_mistakes(page)
        test_link(page)
        test_playing(page)
        test_fields(page)
        test_large(page)
        test_access(page)
        said = page.browser.get_log("browser")
        expect(not said, f"the console says {said}")
        print(f"The module has {size} bytes; the console is empty")
    finally:
        page.browser.quit()


main()
