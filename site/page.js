"use strict";

// A line of controls for each: its name, and the line of C++ that it stands for, with the names of
// controls in the places of their values.
const operations = {
    "All layers": {
        "Replace": "show.replace(start, count, other);",
        "Insert": "show.insert(other, frame);",
        "Append": "show.pushBack(other, keepOutro, keepIntro);",
        "Remove": "show.remove(start, count);",
        "Override": "show.overrideLayersWith(other, frame);",
        "Fit to seconds": "show.setFPSToFitDurationInSeconds(seconds);",
        "Reset": "show.reset();",
    },
    "One layer": {
        "Replace": "show.replaceInLayer(name, start, count, other.layer(from));",
        "Insert": "show.insertInLayer(name, other.layer(from), frame);",
        "Append": "show.pushBackInLayer(name, other.layer(from));",
        "Remove": "show.removeInLayer(name, start, count);",
        "Override": "show.overrideLayerWith(name, other.layer(from), frame);",
        "Fill": "show.fillInLayer(name, frames);",
    },
    "A new animation": {
        "Loop": "show = show.loop(count, repeatIntro, repeatOutro);",
        "Split at": "show = show.splitAt({cuts}, keepIntro, keepOutro).at(piece);",
        "Split each": "show = show.splitEach(step, keepIntro, keepOutro).at(piece);",
        "Take a part": "LayerMap intro, body, outro; " +
            "show.introBodyOutroLayers(intro, body, outro); show = part;",
        "Rotation": "show = Rotation(pulseValue, restValue, riseDuration, fallDuration, " +
            "stepDuration);",
    },
};
const frames = value => ({ type: "number", min: 0, max: 2 ** 32 - 1, step: 1, value });
const float = value => ({ type: "number", step: "any", value });
const flag = { type: "checkbox" };
const controls = {
    frame: frames(10), start: frames(10), count: frames(2), frames: frames(40), step: frames(10),
    piece: frames(1), riseDuration: frames(4), fallDuration: frames(8), stepDuration: frames(3),
    cuts: { value: "10", pattern: " *[0-9]{1,9}( *, *[0-9]{1,9})* *", title: "such as 5, 15" },
    seconds: float(8), pulseValue: float(1), restValue: float(0.1),
    keepIntro: flag, keepOutro: flag, repeatIntro: flag, repeatOutro: flag,
    name: { type: "text" }, from: { choices: [] }, part: { choices: ["intro", "body", "outro"] },
};
const labels = { cuts: "frames", piece: "piece (0 is the first)", name: "layer",
    from: "keys of other's layer" };
const picked = ["frame", "start", "cuts"]; // these follow the frame that is shown
const mostDrawn = 20000, mostLanes = 200; // keys and layers
const mostInAddress = 50000; // characters
const mostRemembered = 3e7; // characters

const $ = id => document.getElementById(id);
let library;
let show, other; // undefined where the text is none
let svg = "", drawn; // the picture as text and as an element, if there is one
let playing = false, time = 0, last = 0; // seconds

function checked(result) {
    if (result instanceof Error)
        throw result;
    return result;
}

/// Calls `work`, and puts what it throws into the element of that id.
function tell(id, work) {
    $(id).textContent = "";
    try {
        return work();
    } catch (error) {
        $(id).textContent = error.message;
    }
}

/// Says something beside what was pressed.
function say(text, place) {
    place.append($("told"));
    $("told").textContent = text;
}

// ---- The text, and what is drawn of it

const history = [];
let now = -1, typedAt = 0;

function remember(typed) {
    const follows = typed && Date.now() - typedAt < 1000;
    typedAt = typed ? Date.now() : 0;
    history.splice(follows ? now : now + 1, Infinity,
        { text: $("text").value, title: $("title").value });
    const length = () => history.reduce((sum, state) => sum + state.text.length, 0);
    while (history.length > 1 && length() > mostRemembered)
        history.shift();
    now = history.length - 1;
}

function travel(steps) {
    if (!history[now + steps])
        return;
    now += steps;
    typedAt = 0;
    $("text").value = history[now].text;
    $("title").value = history[now].title;
    readText();
}

function setText(text, title) {
    $("text").value = text;
    if (title !== undefined)
        $("title").value = title;
    remember(false);
    readText();
}

function readText() {
    $("told").textContent = "";
    $("example").value = "";
    $("undo").disabled = now <= 0;
    $("redo").disabled = now >= history.length - 1;
    const read = tell("mistake", () => checked(library.read($("text").value)));
    $("text").setAttribute("aria-invalid", !read);
    $("operations").disabled = !read;
    if (!read)
        return;
    show?.delete();
    show = read;
    draw();
    clearTimeout(readText.later);
    readText.later = setTimeout(writeAddress, 300);
}

/// Replaces the elements that differ from the last picture: each is a line of the text, except that
/// the first one, the style, has several.
function redraw(text) {
    if (text === svg)
        return;
    const root = $("picture").shadowRoot ?? $("picture").attachShadow({ mode: "open" });
    const before = svg.split("\n"), after = text.split("\n");
    svg = text;
    const offset = before.indexOf("</style>");
    let same = 0, alike = 0; // lines, from the start and back from the end
    const most = Math.min(before.length, after.length);
    while (same < most && before[same] === after[same])
        ++same;
    while (alike < most - same && before.at(-1 - alike) === after.at(-1 - alike))
        ++alike;
    if (drawn?.children.length === before.length - 2 - offset && same > offset && alike >= 2) {
        const range = new Range();
        range.setStart(drawn, 0);
        const fresh = range.createContextualFragment(after.slice(same, -alike).join(""));
        const next = drawn.children[before.length - alike - offset] ?? null;
        for (let count = before.length - alike - same; count > 0; --count)
            drawn.children[same - offset].remove();
        drawn.insertBefore(fresh, next);
    } else {
        root.innerHTML = "<style>svg { display: block; width: 100%; height: auto; }</style>" + text;
        drawn = root.querySelector("svg");
        drawn?.pauseAnimations();
    }
}

function draw() {
    const keys = show.keys(), names = show.names();
    const fits = keys <= mostDrawn && names.length <= mostLanes;
    $("undrawn").textContent = fits ? "" : `${keys} keys in ${names.length} layers are too many ` +
        `to draw: up to ${mostDrawn} in ${mostLanes} are drawn. All else works.`;
    redraw(fits ? library.picture($("title").value, show) : "");
    $("picture").setAttribute("aria-label", `${$("title").value}: ${show.measures()}`);
    $("names").replaceChildren(...names.map(name => new Option(name)));
    $("values").replaceChildren(...names.slice(0, 512).map(name =>
        element("div", {}, element("dt", {}, name), element("dd"))));
    for (const control of document.querySelectorAll("[name=name]"))
        if (!names.includes(control.value))
            control.defaultValue = names[0] ?? ""; // until something is typed there
    writeCodes();
    $("frame").max = Math.max(0, show.frames() - 1);
    goTo(time);
}

function readOther() {
    const read = tell("other-mistake", () => checked(library.read($("other").value)));
    $("other").setAttribute("aria-invalid", !read);
    if (!read)
        return;
    other?.delete();
    other = read;
    for (const select of document.querySelectorAll("[name=from]"))
        select.replaceChildren(...other.names().map(name => new Option(name)));
    writeCodes();
}

// ---- The frame

const seconds = () => show.frames() / show.fps;

function goTo(to) {
    time = to >= 0 && to < seconds() ? to : 0;
    const frame = Math.min(Math.floor(time * show.fps + 1e-3) || 0, $("frame").max);
    drawn?.setCurrentTime(time);
    $("frame").value = frame;
    $("at").textContent = `Frame ${frame} of ${show.frames()}`;
    const values = show.values(frame);
    $("values").querySelectorAll("dd").forEach((place, index) => {
        place.textContent = values[index] || "none";
    });
}

function pick(frame) {
    play(false);
    goTo((frame + 1e-3) / show.fps);
    for (const control of document.querySelectorAll(picked.map(name => `[name=${name}]`)))
        control.value = $("frame").value;
    writeCodes();
}

function play(on) {
    playing = on && seconds() > 0 && isFinite(seconds());
    $("play").textContent = playing ? "Pause" : "Play";
    last = performance.now();
    if (playing)
        requestAnimationFrame(playOn);
}

function playOn(at) {
    if (!playing)
        return;
    goTo((time + Math.max(0, at - last) / 1000) % seconds());
    last = at;
    requestAnimationFrame(playOn);
}

/// The frame under a place on the timeline.
function frameAt(event) {
    const place = new DOMPoint(event.clientX, event.clientY).matrixTransform(
        drawn.getScreenCTM().inverse());
    const mark = drawn.querySelector(".now");
    const left = mark.x.baseVal.value, right = drawn.viewBox.baseVal.width - 16;
    const y = mark.y.baseVal.value;
    if (place.x < left || place.y < y - 15 || place.y > y + mark.height.baseVal.value + 20)
        return undefined;
    const frame = Math.floor((place.x - left) / (right - left) * show.frames());
    return Math.max(0, Math.min(frame, $("frame").max));
}

// ---- Operations

const wordsOf = code => code.match(/\w+/g);
const forms = () => document.querySelectorAll("#operations form");

function element(tag, properties, ...children) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...children);
    return made;
}

function makeControl(name) {
    const { choices, ...properties } = controls[name];
    const control = choices ?
        element("select", { name }, ...choices.map(choice => new Option(choice))) :
        element("input", { name, required: properties.type === "number", ...properties });
    if (name === "name")
        control.setAttribute("list", "names");
    const label = labels[name] ?? name.replace(/[A-Z]/g, sign => " " + sign.toLowerCase());
    return properties.type === "checkbox" ? element("label", {}, control, label) :
        element("label", {}, label, control);
}

function makeForm(group, label, code) {
    const copy = element("button", { type: "button", className: "copy" }, "Copy");
    copy.setAttribute("aria-label", `Copy the C++ of ${label}, ${group.toLowerCase()}`);
    const form = element("form", {}, element("button", { className: "apply" }, label),
        ...wordsOf(code).filter(word => word in controls).map(makeControl),
        element("div", { className: "code" }, element("code"), copy));
    form.dataset.code = code;
    form.setAttribute("aria-label", `${label}, ${group.toLowerCase()}`);
    copy.onclick = () => copyText(form.querySelector("code").textContent, "Copied.", form);
    form.oninput = () => writeCode(form);
    form.onsubmit = event => {
        event.preventDefault();
        form.append($("refusal"));
        tell("refusal", () => apply(form));
    };
    return form;
}

/// A value as C++ has it.
function literal(name, control) {
    if (control.type === "checkbox")
        return String(control.checked);
    if (name === "name" || name === "from")
        return JSON.stringify(control.value);
    return control.step === "any" && /[.e]/i.test(control.value) ? control.value + "F" :
        control.value.trim();
}

function writeCode(form) {
    form.querySelector("code").textContent = form.dataset.code.replace(/\w+/g, word =>
        word in controls ? literal(word, form.elements.namedItem(word)) : word);
}

function writeCodes() {
    forms().forEach(writeCode);
}

function valueOf(name, control) {
    if (name === "cuts")
        return control.value.split(",").map(Number);
    if (control.type === "checkbox")
        return control.checked;
    return control.type === "number" ? Number(control.value) : control.value;
}

/// Calls the operation that stands in the form's line with the values that stand there.
function apply(form) {
    const { code } = form.dataset;
    const operation = (/show\.(\w+)\(/.exec(code) ?? ["", "Rotation"])[1];
    const given = wordsOf(code).filter(word => word in controls || word === "other");
    if (given.includes("other") && $("other").ariaInvalid === "true")
        throw Error("The second animation needs to be mended first.");
    const values = given.map(word =>
        word === "other" ? other : valueOf(word, form.elements.namedItem(word)));
    try {
        checked(show[operation](...values));
        setText(checked(show.text()));
        say(show.measures(), form);
    } catch (error) {
        readText(); // what the text says is what there is
        throw error;
    }
}

// ---- Save, open, share

function save(content, type, ending) {
    const address = URL.createObjectURL(new Blob([content], { type }));
    const name = $("title").value.toLowerCase().replace(/[^\p{L}\p{N}]+/gu, "-") || "animation";
    element("a", { href: address, download: name + ending }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
}

async function copyText(text, done, place) {
    try {
        await navigator.clipboard.writeText(text);
        say(done, place);
    } catch {
        say(`This browser does not let a page copy: ${text}`, place);
    }
}

async function open(file) {
    const text = await file.text();
    tell("mistake", () => {
        if (!text.startsWith("OLA Show"))
            return setText(text, file.name);
        const recording = checked(library.recorded(text, file.name));
        try {
            setText(checked(recording.text()), file.name);
        } finally {
            recording.delete();
        }
    });
}

async function through(stream, bytes) {
    const result = new Blob([bytes]).stream().pipeThrough(stream);
    return new Uint8Array(await new Response(result).arrayBuffer());
}

/// Puts the animation into the address; whether there is room for it.
async function writeAddress() {
    const text = $("text").value, title = $("title").value;
    const bytes = await through(new CompressionStream("deflate-raw"), text);
    const packed = btoa(Array.from(bytes, byte => String.fromCharCode(byte)).join(""));
    if (text !== $("text").value)
        return false;
    const fits = packed.length <= mostInAddress;
    const animation = packed.replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
    window.history.replaceState(null, "",
        fits ? "#" + new URLSearchParams({ title, animation }) : location.pathname);
    return fits;
}

async function share() {
    const place = $("share").parentNode;
    if (await writeAddress())
        await copyText(location.href, "The link is copied; it holds the animation show.", place);
    else
        say("The animation is too long for a link: save it instead.", place);
}

async function readAddress() {
    const given = new URLSearchParams(location.hash.slice(1));
    const packed = given.get("animation");
    if (packed === null)
        return openExample(given.get("example") ?? "guide-1");
    try {
        const bytes = atob(packed.replaceAll("-", "+").replaceAll("_", "/"));
        const text = await through(new DecompressionStream("deflate-raw"),
            Uint8Array.from(bytes, byte => byte.charCodeAt(0)));
        setText(new TextDecoder().decode(text), given.get("title") ?? "");
    } catch {
        await openExample("guide-1");
        say("The link is not whole; this is an example.", $("share").parentNode);
    }
}

async function openExample(name) {
    const option = [...$("example").options].find(({ value }) => value && value === name);
    if (!option)
        return openExample("guide-1");
    const answer = await fetch(`examples/${name}.json`);
    setText((await answer.text()).trimEnd(), option.text);
    $("example").value = name;
}

// ---- What happens when

async function start() {
    $("operations").append(...Object.entries(operations).map(([group, lines]) =>
        element("section", {}, element("h3", {}, group),
            ...Object.entries(lines).map(([label, code]) => makeForm(group, label, code)))));
    library = await animationmodel();
    readOther();
    await readAddress();
    play(!matchMedia("(prefers-reduced-motion: reduce)").matches);

    for (const id of ["text", "title"])
        $(id).oninput = () => {
            remember(true);
            readText();
        };
    $("other").oninput = readOther;
    $("example").onchange = event => event.target.value && openExample(event.target.value);
    $("undo").onclick = () => travel(-1);
    $("redo").onclick = () => travel(1);
    document.onkeydown = event => {
        const key = (event.ctrlKey || event.metaKey) && event.key.toLowerCase();
        if (!["z", "y"].includes(key) || event.target === $("other"))
            return;
        event.preventDefault();
        travel(key === "y" || event.shiftKey ? 1 : -1);
    };
    $("open").onchange = event => event.target.files[0] && open(event.target.files[0]);
    $("save").onclick = () => save($("text").value, "application/json", ".json");
    $("save-picture").onclick = () =>
        save(library.picture($("title").value, show), "image/svg+xml", ".svg");
    $("share").onclick = share;
    $("play").onclick = () => playing ? pick(Number($("frame").value)) : play(true);
    $("frame").oninput = event => pick(Number(event.target.value));
    $("picture").onpointerdown = $("picture").onpointermove = event => {
        const frame = event.buttons === 1 && drawn ? frameAt(event) : undefined;
        if (frame !== undefined)
            pick(frame);
    };
    $("scheme").onclick = () => {
        DoxygenAwesomeDarkModeToggle.userPreference = !DoxygenAwesomeDarkModeToggle.userPreference;
    };
    window.onhashchange = readAddress;
    document.body.dataset.ready = "";
}

start();
