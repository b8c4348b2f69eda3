// Each operation by its name in C++: the line of C++ that it stands for, with the names of controls
// in the places of their values, and what it does. Forms, calls, addresses and programs follow this
// table.
const operations = {
    "All layers": {
        replace: {
            label: "Replace", cpp: "show.replace(start, count, other);",
            does: "Puts other in the place of a range of frames. What lay after it follows.",
        },
        insert: {
            label: "Insert", cpp: "show.insert(other, frame);",
            does: "Inserts other. What stood there follows; a key across the place is cut.",
        },
        pushBack: {
            label: "Append", cpp: "show.pushBack(other, keepOutro, keepIntro);",
            does: "Appends other, and drops the outro before it and its own intro unless kept.",
        },
        remove: {
            label: "Remove", cpp: "show.remove(start, count);",
            does: "Takes a range of frames out of every layer. What lay after it moves up.",
        },
        overrideLayersWith: {
            label: "Override", cpp: "show.overrideLayersWith(other, frame);",
            does: "Lays the layers of other over those of the same name. Where they wait, the " +
                "layer shows through. A key that they end inside follows whole.",
        },
    },
    "One layer": {
        replaceInLayer: {
            label: "Replace", cpp: "show.replaceInLayer(name, start, count, other.layer(keys));",
            does: "Puts the keys of a layer in the place of a range of frames. What lay after " +
                "it follows.",
        },
        insertInLayer: {
            label: "Insert", cpp: "show.insertInLayer(name, other.layer(keys), frame);",
            does: "Inserts the keys of a layer. What stood there follows; a key across the " +
                "place is cut.",
        },
        pushBackInLayer: {
            label: "Append", cpp: "show.pushBackInLayer(name, other.layer(keys));",
            does: "Appends the keys of a layer.",
        },
        removeInLayer: {
            label: "Remove", cpp: "show.removeInLayer(name, start, count);",
            does: "Takes a range of frames out of the layer. With a count of 0 it only cuts " +
                "there.",
        },
        overrideLayerWith: {
            label: "Override", cpp: "show.overrideLayerWith(name, other.layer(keys), frame);",
            does: "Lays the keys of a layer over this one. Where they wait, it shows through. " +
                "A key that they end inside follows whole.",
        },
        fillInLayer: {
            label: "Fill", cpp: "show.fillInLayer(name, frames);",
            does: "Appends a Wait key that makes the layer last so many frames.",
        },
    },
    "Time": {
        introSize: {
            label: "Set the parts",
            cpp: "show.introSize = introFrames; show.outroSize = outroFrames;",
            does: "Says how many frames the intro has, from the start, and the outro, up to the " +
                "end. The body lies between. No key moves.",
        },
        setFPSToFitDurationInSeconds: {
            label: "Fit to seconds", cpp: "show.setFPSToFitDurationInSeconds(seconds);",
            does: "Sets the frame rate so that the animation lasts so long. No key moves.",
        },
        change_frame_rate: {
            label: "Change rate", cpp: "change_frame_rate(show, fps);",
            does: "Sets the frame rate, and moves the ends of keys so that the animation lasts " +
                "as many seconds as before.",
        },
        stretch_to: {
            label: "Stretch", cpp: "stretch_to(show, frames);",
            does: "Moves the ends of keys so that the animation lasts so many frames.",
        },
    },
    "A new animation": {
        loop: {
            label: "Loop", cpp: "show = show.loop(count, repeatIntro, repeatOutro);",
            does: "Plays the body so many times, between one intro and one outro, or with " +
                "them around every body.",
        },
        splitAt: {
            label: "Split at", cpp: "show = show.splitAt({cuts}, keepIntro, keepOutro).at(piece);",
            does: "Cuts all layers at these frames, and takes one of the pieces; 0 is the first.",
        },
        splitEach: {
            label: "Split each",
            cpp: "show = show.splitEach(step, keepIntro, keepOutro).at(piece);",
            does: "Cuts all layers at 0 and again after each step, and takes one of the pieces. " +
                "Piece 0 is empty.",
        },
        introBodyOutroLayers: {
            label: "Take a part", cpp: "LayerMap intro, body, outro; " +
                "show.introBodyOutroLayers(intro, body, outro); show = part;",
            does: "Takes the intro, the body or the outro as an animation of its own.",
        },
        Rotation: {
            label: "Rotation", cpp: "show = Rotation(pulseValue, restValue, riseDuration, " +
                "fallDuration, stepDuration);",
            does: "A pulse that travels twice around a ring of eight lamps.",
        },
        reset: {
            label: "Reset", cpp: "show.reset();", does: "Goes back to no layers at 25 fps.",
        },
    },
};
// The lines of Python that are other than by their names.
const pythonLines = {
    setFPSToFitDurationInSeconds: "show.set_fps_to_fit_duration_in_seconds(seconds)",
    change_frame_rate: "show.change_frame_rate(fps)",
    stretch_to: "show.stretch_to(frames)",
    splitAt: "show = show.split_at([cuts], keepIntro, keepOutro)[piece]",
    splitEach: "show = show.split_each(step, keepIntro, keepOutro)[piece]",
    introBodyOutroLayers: "intro, body, outro = show.intro_body_outro_layers(); " +
        "show = Animation(part)",
    Rotation: "show = Rotation(pulseValue, restValue, riseDuration, fallDuration, stepDuration)",
};
const frames = value => ({ kind: "frames", value });
const float = value => ({ kind: "float", value });
const flag = { kind: "flag", value: false };
const controls = {
    frame: { kind: "frames", follows: true }, start: { kind: "frames", follows: true },
    count: frames("2"), frames: frames("40"), step: frames("10"), piece: frames("1"),
    riseDuration: frames("4"), fallDuration: frames("8"), stepDuration: frames("3"),
    cuts: { kind: "cuts", name: "frames", follows: true }, fps: float("30"), seconds: float("8"),
    introFrames: frames("10"), outroFrames: frames("10"),
    pulseValue: float("1"), restValue: float("0.1"),
    keepIntro: flag, keepOutro: flag, repeatIntro: flag, repeatOutro: flag,
    name: { kind: "layer" }, keys: { kind: "choice" },
    part: { kind: "part", choices: ["intro", "body", "outro"], value: "body" },
};
const mostLanes = 200; // layers that are drawn
const mostReplaced = 4000; // elements of a picture; more are drawn anew with all others
const mostListed = 512; // layers, in lists of names and of values
const mostText = 2e6, mostInAddress = 50000, mostRemembered = 3e7; // characters
const markedFor = 2500; // milliseconds
const pictureStyle = `
    :host { display: block; position: relative; }
    svg { display: block; width: 100%; height: auto; }
    .marks { position: absolute; inset: 0; pointer-events: none; stroke-width: 2; fill: none; }
    .came { fill: #3fb95066; stroke: #3fb950; }
    .went { fill: #ff7b72; }
    .moved { stroke: #58a6ff; stroke-dasharray: 6 3; }
    @media (prefers-reduced-motion: no-preference) {
        .marks { animation: fade ${markedFor}ms forwards; }
        @keyframes fade { 70% { opacity: 1; } to { opacity: 0; } }
    }`;

const $ = id => document.getElementById(id);
const firstOther = $("other").value;
let library;
let show, other; // undefined where the text is none
let svg = "", drawn; // the picture as text and as an element, if there is one
let playing = false, position = 0, last = 0; // frames, milliseconds

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
function say(text, place = $("tools")) {
    place.append($("told"));
    $("told").textContent = text;
}

function element(tag, properties, ...children) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...children);
    return made;
}

// ---- The texts, and what is drawn of them

// Each state has the text and the title, and how the text came about: the edits since `origin`.
const states = [];
let now = -1, typedAt = 0;

function remember(state) {
    const typed = state.typed && Date.now() - typedAt < 1000;
    typedAt = state.typed ? Date.now() : 0;
    states.splice(typed ? now : now + 1, Infinity, state);
    const length = () => states.reduce((sum, { text }) => sum + text.length, 0);
    while (states.length > 1 && length() > mostRemembered)
        states.shift();
    now = states.length - 1;
}

function write({ text, title }) {
    $("text").value = text;
    $("title").value = title;
}

function travel(steps) {
    if (!states[now + steps])
        return;
    now += steps;
    typedAt = 0;
    write(states[now]);
    readText(true);
}

/// Another animation, which no edit led to.
function setText(text, title) {
    const state = { text, title, origin: text, edits: [] };
    write(state);
    remember(state);
    readText();
}

/// What was typed is an animation of its own, unless only the title was.
function typedText() {
    const text = $("text").value, before = states[now];
    const kept = before?.text === text;
    remember({
        text, title: $("title").value, typed: true,
        origin: kept ? before.origin : text, edits: kept ? before.edits : [],
    });
    readText();
}

function read(text) {
    if (text.length > mostText)
        throw Error(`${text.length} characters are more than this page edits, ${mostText}`);
    return checked(library.read(text));
}

/// Shows what the text says, and marks what became of the frames before if that is asked for.
function readText(marked) {
    $("told").textContent = $("refusal").textContent = "";
    $("example").value = "";
    $("undo").disabled = now <= 0;
    $("redo").disabled = now >= states.length - 1;
    const next = tell("mistake", () => read($("text").value));
    $("text").setAttribute("aria-invalid", !next);
    for (const id of ["fields", "save-picture", "cpp", "python"])
        $(id).disabled = !next;
    $("mend").hidden = Boolean(next);
    if (!next)
        return;
    const before = show;
    show = next;
    draw();
    mark(marked && before ? checked(show.changes(before)) : []);
    before?.delete();
    addressLater();
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
    const few = same > offset && alike >= 2 && most - same - alike < mostReplaced;
    if (few && drawn?.children.length === before.length - 2 - offset) {
        const range = new Range();
        range.setStart(drawn, 0);
        const fresh = range.createContextualFragment(after.slice(same, -alike).join(""));
        const next = drawn.children[before.length - alike - offset] ?? null;
        const previous = drawn.children[same - offset - 1];
        while (previous.nextElementSibling !== next)
            previous.nextElementSibling.remove();
        previous.after(fresh);
    } else {
        root.innerHTML = `<style>${pictureStyle}</style>` + text;
        drawn = root.querySelector("svg");
        drawn?.pauseAnimations();
    }
}

function draw() {
    const names = show.names(), listed = names.slice(0, mostListed);
    const fits = names.length <= mostLanes;
    $("undrawn").textContent = fits ? "" : `${names.length} layers are too many to draw: up to ` +
        `${mostLanes} are drawn. All else works.`;
    const picture = fits ? library.picture($("title").value, show) : "";
    if (picture instanceof Error)
        $("undrawn").textContent = `There is no picture: ${picture.message}`;
    redraw(picture instanceof Error ? "" : picture);
    $("picture").setAttribute("aria-label", `${$("title").value}: ${show.measures()}`);
    $("names").replaceChildren(...listed.map(name => new Option(name)));
    $("values").replaceChildren(...listed.map(name =>
        element("div", {}, element("dt", {}, name), element("dd"))));
    if (!names.includes(controls.name.value))
        controls.name.value = names[0] ?? "";
    fill();
    $("frame").max = Math.max(0, Math.min(show.frames(), 2 ** 32) - 1);
    play(playing);
    goTo(position);
}

/// Marks what came and went in the layers, and what moved, for a while.
function mark(changes) {
    const root = $("picture").shadowRoot;
    root?.querySelector(".marks")?.remove();
    clearTimeout(mark.later);
    const moved = ({ came, went, follow }) => came === went ? 0 : follow;
    const counts = {
        came: changes.map(({ came }) => came), went: changes.map(({ went }) => went),
        moved: changes.map(moved),
    };
    $("legend").replaceChildren(...Object.entries(counts).flatMap(([what, counts]) => {
        const [count, ...others] = new Set(counts.filter(count => count > 0));
        const counted = count === 1 ? "1 frame" : `${count} frames`;
        const text = others.length > 0 ? "some frames" : counted;
        return count === undefined ? [] :
            [element("span", { className: what }, `${text} ${what}`)];
    }));
    if (changes.length === 0 || !drawn)
        return;
    const { left, right, top, lane } = places();
    const x = frame => left + (right - left) * frame / Math.max(1, show.frames());
    const rect = (what, change, from, to) => `<rect class="${what}" x="${x(from)}" ` +
        `y="${top + lane * change.lane}" width="${Math.max(3, x(to) - x(from))}" ` +
        `height="${lane - 4}"/>`;
    const marks = new DOMParser().parseFromString(
        `<svg xmlns="http://www.w3.org/2000/svg" class="marks" ` +
        `viewBox="${drawn.getAttribute("viewBox")}">` + changes.map(change => {
            const { start, came, went, follow } = change, end = start + came;
            return (came > 0 ? rect("came", change, start, end) : "") +
                (moved(change) > 0 ? rect("moved", change, end, end + follow) : "") +
                (went > 0 ? rect("went", change, end, end) : "");
        }).join("") + "</svg>", "image/svg+xml").documentElement;
    root.append(marks);
    mark.later = setTimeout(() => {
        marks.remove();
        $("legend").replaceChildren();
    }, markedFor);
}

function readOther() {
    const next = tell("other-mistake", () => read($("other").value));
    $("other").setAttribute("aria-invalid", !next);
    addressLater();
    if (!next)
        return;
    other?.delete();
    other = next;
    controls.keys.choices = other.names().slice(0, mostListed);
    const { choices, value } = controls.keys;
    controls.keys.value = choices.includes(value) ? value : choices[0] ?? "";
    fill();
}

// ---- The frame

/// Frames per second at which the picture plays; 0 if it does not.
function rate() {
    const fps = Math.abs(show.fps), seconds = show.frames() / fps;
    return fps > 0 && isFinite(fps) && seconds > 0 && isFinite(seconds) ? fps : 0;
}

function goTo(to) {
    position = to >= 0 && to < show.frames() ? to : 0;
    const frame = Math.min(Math.floor(position), $("frame").max);
    if (rate() > 0)
        drawn?.setCurrentTime((position + 1e-3) / rate());
    $("frame").value = frame;
    $("at").textContent = `Frame ${frame} of ${show.frames()}`;
    const values = show.values(frame, mostListed);
    $("values").querySelectorAll("dd").forEach((place, index) => {
        place.textContent = values[index] || "none";
    });
}

function pick(frame) {
    play(false);
    goTo(frame);
    for (const control of Object.values(controls))
        if (control.follows)
            control.value = $("frame").value;
    fill();
}

function play(on) {
    playing = on && rate() > 0;
    $("play").textContent = playing ? "Pause" : "Play";
    $("play").disabled = rate() === 0;
    $("play").title = rate() > 0 ? "" :
        `It does not play: ${show.frames()} frames at ${show.fps} frames per second.`;
    cancelAnimationFrame(play.next);
    last = performance.now();
    if (playing)
        play.next = requestAnimationFrame(playOn);
}

function playOn(at) {
    goTo((position + Math.max(0, at - last) / 1000 * rate()) % show.frames());
    last = at;
    play.next = requestAnimationFrame(playOn);
}

/// Where the timeline is in the picture.
function places() {
    const mark = drawn.querySelector(".now");
    const top = mark.y.baseVal.value + 4, height = mark.height.baseVal.value - 8;
    return {
        left: mark.x.baseVal.value, right: drawn.viewBox.baseVal.width - 16,
        top, bottom: top + height, lane: height / Math.max(1, show.names().length),
    };
}

/// The frame under a place on the timeline.
function frameAt(event) {
    const { x, y } = new DOMPoint(event.clientX, event.clientY).matrixTransform(
        drawn.getScreenCTM().inverse());
    const { left, right, top, bottom } = places();
    if (x < left || y < top - 19 || y > bottom + 24)
        return undefined;
    const frame = Math.floor((x - left) / (right - left) * show.frames());
    return Math.max(0, Math.min(frame, $("frame").max));
}

// ---- Values, as C++ and Python have them

const quoted = text => JSON.stringify(text);

const cppText = text => {
    const bytes = new TextEncoder().encode(text).length;
    const inside = quoted(text).replace(/\\u00(..)/g, (_, digits) =>
        "\\" + parseInt(digits, 16).toString(8).padStart(3, "0"));
    return text.includes("\0") ? `std::string(${inside}, ${bytes})` : inside;
};

/// Floats that JSON has as numbers of few digits, or as "nan", "inf" and "-inf".
function cppFloat(value) {
    if (typeof value === "string") {
        const limit = value === "nan" ? "quiet_NaN" : "infinity";
        return `${value[0] === "-" ? "-" : ""}std::numeric_limits<float>::${limit}()`;
    }
    const text = pythonFloat(value);
    if (Number.isInteger(value) && Math.abs(value) < 2 ** 24 && text !== "-0.0")
        return text;
    return text + (/[.e]/.test(text) ? "F" : ".0F");
}

function pythonFloat(value) {
    if (typeof value === "string")
        return `float("${value}")`;
    return Object.is(value, -0) ? "-0.0" : String(value);
}

function wholeOf(text, what) {
    const value = text.trim() === "" ? NaN : Number(text);
    if (!Number.isInteger(value) || value < 0 || value >= 2 ** 32)
        throw Error(`${what} needs a whole number from 0 to 4294967295.`);
    return value + 0; // -0 is 0
}

/// The nearest float, as the number of fewest digits that reads back as it.
function floatOf(text, what) {
    const value = text.trim() === "" ? NaN : Math.fround(Number(text));
    if (!isFinite(value))
        throw Error(`${what} needs a number within the floats' range.`);
    let digits = 1;
    while (Math.fround(Number(value.toPrecision(digits))) !== value)
        ++digits;
    return Number(value.toPrecision(digits));
}

/// What the text of a field stands for: the value that is passed on, and how it is written in C++
/// and in Python.
const kinds = {
    frames: (text, what) => {
        const value = wholeOf(text, what);
        return { value, cpp: String(value), python: String(value) };
    },
    float: (text, what) => {
        const value = floatOf(text, what);
        return { value, cpp: cppFloat(value), python: pythonFloat(value) };
    },
    cuts: (text, what) => {
        const value = text.trim() === "" ? [] : text.split(",").map(cut => wholeOf(cut, what));
        return { value, cpp: value.join(", "), python: value.join(", ") };
    },
    flag: value => ({ value, cpp: String(value), python: value ? "True" : "False" }),
    layer: text => {
        const value = text.replace(/\p{Surrogate}/gu, "\ufffd");
        return { value, cpp: cppText(value), python: quoted(value) };
    },
    choice: text => {
        if (controls.keys.choices.length === 0)
            throw Error("The second animation has no layer.");
        return kinds.layer(text);
    },
    part: value => ({ value, cpp: value, python: value }),
};

// ---- Operations

const all = Object.assign({}, ...Object.values(operations));
const typed = {}; // what was typed into controls, which stays from one operation to the next
let chosen = "loop";

const wordsOf = code => code.match(/\w+/g);
const controlsOf = operation => wordsOf(all[operation].cpp).filter(word => word in controls);
const fieldOf = name => $("operation").elements.namedItem(controls[name].name ?? name);
const snakeCase = word => word.replace(/[A-Z]/g, sign => "_" + sign.toLowerCase());
const pythonOf = operation => pythonLines[operation] ?? all[operation].cpp.slice(0, -1).replace(
    /\w+/g, word => word in controls ? word : snakeCase(word));

function makeField(key) {
    const { kind, name = key, choices } = controls[key];
    const types = { frames: "number", float: "number", flag: "checkbox" };
    const field = choices ? element("select", { name }) :
        element("input", { name, type: types[kind] ?? "text", autocomplete: "off" });
    if (kind === "frames")
        Object.assign(field, { min: 0, max: 2 ** 32 - 1, step: 1 });
    if (kind === "float")
        field.step = "any";
    if (kind === "layer")
        field.setAttribute("list", "names");
    if (kind === "cuts")
        field.placeholder = "such as 5, 15";
    field.oninput = () => {
        typed[key] = field.type === "checkbox" ? field.checked : field.value;
        if (field.type === "number" && field.value === "" && !field.validity.badInput)
            delete typed[key]; // it follows the picture again
        writeCode();
        addressLater();
    };
    field.onchange = fill;
    return kind === "flag" ? element("label", { className: "flag" }, field, name) :
        element("label", {}, name, field);
}

/// Shows the form of an operation.
function choose(operation) {
    if ($("controls").contains(document.activeElement))
        document.activeElement.blur(); // while it still has the operation that it belongs to
    chosen = $("choice").value = operation;
    const { label, does } = all[chosen];
    $("does").textContent = does;
    $("apply").textContent = label;
    $("controls").replaceChildren(...controlsOf(chosen).map(makeField));
    $("second").hidden = !wordsOf(all[chosen].cpp).includes("other");
    $("refusal").textContent = "";
    fill();
}

/// Gives the fields what was typed into them, and to the others what they have by themselves.
function fill() {
    for (const key of controlsOf(chosen)) {
        const { choices, value = "10" } = controls[key], field = fieldOf(key);
        if (choices && choices.join() !== [...field.options].map(({ value }) => value).join())
            field.replaceChildren(...choices.map(choice => new Option(choice, choice)));
        const filled = choices && !choices.includes(typed[key]) ? value : typed[key] ?? value;
        if (field.type === "checkbox")
            field.checked = filled;
        else if (field.value !== filled)
            field.value = filled; // where it is the same, the field can still undo what was typed
    }
    writeCode();
}

/// What stands in a control; throws where it stands for nothing.
function valueOf(key) {
    const { kind, name = key } = controls[key], field = fieldOf(key);
    return kinds[kind](field.type === "checkbox" ? field.checked : field.value, name);
}

/// The line with the values of the controls; their names stay where they have none.
function lineOf(code, language) {
    return code.replace(/\w+/g, word => {
        if (!(word in controls))
            return word;
        try {
            return valueOf(word)[language];
        } catch {
            return controls[word].name ?? word;
        }
    });
}

function writeCode() {
    $("code").textContent = lineOf(all[chosen].cpp, "cpp");
    for (const key of controlsOf(chosen)) {
        let valid = true;
        try {
            valueOf(key);
        } catch {
            valid = false;
        }
        fieldOf(key).setAttribute("aria-invalid", !valid);
    }
}

/// Calls the chosen operation with the values that stand in its line.
function apply() {
    const words = wordsOf(all[chosen].cpp);
    if (words.includes("other") && $("other").ariaInvalid === "true")
        throw Error("The second animation needs to be mended first.");
    const given = words.filter(word => word in controls || word === "other").map(word =>
        word === "other" ? other : valueOf(word).value);
    const edit = {
        cpp: lineOf(all[chosen].cpp, "cpp"), python: lineOf(pythonOf(chosen), "python"),
        other: words.includes("other") ? checked(other.text()) : undefined,
    };
    const next = read($("text").value);
    try {
        checked(next[chosen](...given));
        const text = checked(next.text()), { origin, edits } = states[now];
        const state = { text, title: $("title").value, origin, edits: [...edits, edit] };
        write(state);
        remember(state);
    } finally {
        next.delete();
    }
    readText(true);
    say(show.measures(), $("result"));
}

// ---- Programs

/// Lines that build an animation, which is written in JSON, key by key.
const builders = {
    cpp: (name, { layers, introSize, outroSize, fps }) => [
        ...Object.entries(layers).flatMap(([layer, keys]) => keys.length === 0 ?
            [`${name}.pushBackInLayer(${cppText(layer)}, {});`] :
            keys.map(([effect, args, duration]) => `${name}.pushBackInLayer(${cppText(layer)}, ` +
                (typeof effect === "string" ? effect :
                    `static_cast<AnimationKeyCommandEffect>(${effect})`) +
                `, {${args.map(cppFloat).join(", ")}}, ${duration});`)),
        ...(introSize > 0 ? [`${name}.introSize = ${introSize};`] : []),
        ...(outroSize > 0 ? [`${name}.outroSize = ${outroSize};`] : []),
        ...(fps !== 25 ? [`${name}.fps = ${cppFloat(fps)};`] : []),
    ],
    python: (name, { layers, introSize, outroSize, fps }) => [
        ...Object.entries(layers).flatMap(([layer, keys]) => keys.length === 0 ?
            [`${name}.push_back_in_layer(${quoted(layer)}, [])`] :
            keys.map(([effect, args, duration]) =>
                `${name}.push_back_in_layer(${quoted(layer)}, Key(${effect}, ` +
                `[${args.map(pythonFloat).join(", ")}], ${duration}))`)),
        ...(introSize > 0 ? [`${name}.intro_size = ${introSize}`] : []),
        ...(outroSize > 0 ? [`${name}.outro_size = ${outroSize}`] : []),
        ...(fps !== 25 ? [`${name}.fps = ${pythonFloat(fps)}`] : []),
    ],
};

/// The lines of a program that builds what the page shows: the animation that was opened or typed,
/// and each edit since then.
function linesOf(language) {
    const { origin, edits } = states[now], build = builders[language];
    const animation = read(origin);
    const lines = build("show", JSON.parse(checked(animation.text())));
    animation.delete();
    const made = name => language === "cpp" ? `Animation ${name};` : `${name} = Animation()`;
    lines.unshift(made("show"));
    let given;
    for (const edit of edits) {
        if (edit.other !== undefined && edit.other !== given) {
            const anew = given === undefined ? made("other") :
                language === "cpp" ? "other.reset();" : "other.reset()";
            lines.push(anew, ...build("other", JSON.parse(edit.other)));
            given = edit.other;
        }
        const line = edit[language];
        lines.push(language === "cpp" && line.startsWith("LayerMap") ? `{ ${line} }` : line);
    }
    return lines;
}

const programs = {
    cpp: () => {
        const lines = linesOf("cpp"), has = text => lines.some(line => line.includes(text));
        return [
            "#include <animationmodel/Animation.h>",
            ...(has("Rotation(") ? ["#include <animationmodel/Rotation.h>"] : []),
            ...(has("change_frame_rate(") || has("stretch_to(") ?
                ["#include <animationmodel/retime.h>"] : []),
            "", "#include <iostream>", ...(has("std::numeric_limits") ? ["#include <limits>"] : []),
            "", "int main() {", "    using namespace Kiv;", "",
            ...lines.map(line => "    " + line), "", "    std::cout << show << '\\n';", "}", "",
        ].join("\n");
    },
    python: () => {
        const lines = linesOf("python"), has = text => lines.some(line => line.includes(text));
        const names = ["Animation", "Hold", "Key", "NoValue", "Rotation", "Transition", "Wait"];
        return [
            `from animationmodel import ${names.filter(has).join(", ")}`, "",
            ...lines, "", "print(show.to_json())", "",
        ].join("\n");
    },
};

function showProgram(language) {
    tell("mistake", () => {
        $("program-text").value = programs[language]();
        $("program-heading").textContent = language === "cpp" ? "As a program in C++" :
            "As a program in Python";
        $("program").showModal();
        $("program-text").setSelectionRange(0, 0); // whose place the browser scrolls to
        $("program-text").scrollTop = 0;
    });
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
        say("This browser does not let a page copy: select the text instead.", place);
    }
}

async function openFile(file) {
    if (file.size > mostText)
        return say(`${file.name} has ${file.size} bytes: more than this page edits, ${mostText}.`);
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

async function pack(text) {
    const bytes = await through(new CompressionStream("deflate-raw"), text);
    const packed = btoa(Array.from(bytes, byte => String.fromCharCode(byte)).join(""));
    return packed.replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

async function unpack(packed) {
    if (packed.length > mostInAddress) // it might hold a thousand times as much
        throw Error("too long");
    const bytes = atob(packed.replaceAll("-", "+").replaceAll("_", "/"));
    const text = new TextDecoder().decode(await through(new DecompressionStream("deflate-raw"),
        Uint8Array.from(bytes, byte => byte.charCodeAt(0))));
    if (text.length > mostText)
        throw Error("too long");
    return text;
}

function addressLater() {
    clearTimeout(addressLater.later);
    addressLater.later = setTimeout(writeAddress, 300);
}

/// Puts the animations and the operation with what was typed for it into the address; whether there
/// is room.
async function writeAddress() {
    clearTimeout(addressLater.later);
    const text = $("text").value, second = $("other").value;
    const given = { operation: chosen };
    for (const key of controlsOf(chosen))
        if (key in typed)
            given[controls[key].name ?? key] = typed[key];
    if (second !== firstOther)
        given.other = await pack(second);
    Object.assign(given, { title: $("title").value, animation: await pack(text) });
    if (text !== $("text").value || second !== $("other").value)
        return false;
    const address = "#" + new URLSearchParams(given);
    const fits = address.length <= mostInAddress;
    history.replaceState(null, "", fits ? address : location.pathname);
    return fits;
}

async function share() {
    if (await writeAddress())
        await copyText(location.href, "The link is copied; it holds both animations.");
    else
        say("The animations are too long for a link: save them instead.");
}

async function readAddress() {
    const given = new URLSearchParams(location.hash.slice(1));
    const operation = given.get("operation");
    const known = Object.hasOwn(all, operation);
    if (known) {
        for (const key of controlsOf(operation)) {
            const value = given.get(controls[key].name ?? key);
            if (value !== null)
                typed[key] = controls[key].kind === "flag" ? value === "true" : value;
        }
        choose(operation);
    }
    const broken = [];
    const unpacked = async name => {
        try {
            return given.has(name) ? await unpack(given.get(name)) : undefined;
        } catch {
            broken.push(name);
        }
    };
    const text = await unpacked("animation"), second = await unpacked("other");
    if (second !== undefined) {
        $("other").value = second;
        readOther();
    }
    if (text !== undefined)
        setText(text, given.get("title") ?? "");
    else if (given.has("example") || broken.length > 0 || now < 0)
        await openExample(given.get("example") ?? "demo");
    if (operation !== null && !known)
        say(`There is no operation ${operation} here.`, $("result"));
    if (broken.length > 0)
        say(`The link is not whole: ${broken.join(" and ")} cannot be read.`, $("result"));
}

async function openExample(name) {
    const option = [...$("example").options].find(({ value }) => value && value === name);
    const title = option?.text ?? name;
    try {
        const answer = option ? await fetch(`examples/${name}.json`) : { ok: false };
        if (!answer.ok)
            throw Error(`the site has no example ${name}`);
        setText((await answer.text()).trimEnd(), title);
        $("example").value = name;
    } catch (error) {
        if (now < 0)
            setText('{ "layers": {} }', "");
        say(`The example "${title}" did not load: ${error.message}.`, $("result"));
    }
}

// ---- What happens when

/// Whether undo and redo are for the field that has the focus, and not for the animation.
const undoesItself = target => target !== $("text") && target !== $("title") &&
    target.matches("textarea, input:not([type=checkbox]):not([type=range])");

function listen() {
    $("text").oninput = $("title").oninput = typedText;
    $("other").oninput = readOther;
    $("example").onchange = event => event.target.value && openExample(event.target.value);
    $("choice").onchange = event => {
        choose(event.target.value);
        addressLater();
    };
    $("operation").onsubmit = event => {
        event.preventDefault();
        $("told").textContent = "";
        tell("refusal", apply);
    };
    $("copy").onclick = () => copyText($("code").textContent, "Copied.", $("result"));
    $("undo").onclick = () => travel(-1);
    $("redo").onclick = () => travel(1);
    document.onkeydown = event => {
        const key = (event.ctrlKey || event.metaKey) && event.key.toLowerCase();
        if (!["z", "y"].includes(key) || undoesItself(event.target))
            return;
        event.preventDefault();
        travel(key === "y" || event.shiftKey ? 1 : -1);
    };
    $("open").onchange = event => event.target.files[0] && openFile(event.target.files[0]);
    $("save").onclick = () => save($("text").value, "application/json", ".json");
    $("save-picture").onclick = () => tell("mistake", () =>
        save(checked(library.picture($("title").value, show)), "image/svg+xml", ".svg"));
    $("share").onclick = share;
    $("cpp").onclick = () => showProgram("cpp");
    $("python").onclick = () => showProgram("python");
    $("copy-program").onclick = () =>
        copyText($("program-text").value, "Copied.", $("program-tools"));
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
}

/// A list beside the form where there is room for one, and one that opens elsewhere.
function showChoice() {
    const wide = matchMedia("(min-width: 1000px)");
    const count = Object.keys(all).length + Object.keys(operations).length;
    wide.onchange = () => $("choice").size = wide.matches ? count : 1;
    wide.onchange();
    $("choice").append(...Object.entries(operations).map(([label, group]) =>
        element("optgroup", { label }, ...Object.entries(group).map(([value, { label }]) =>
            new Option(label, value)))));
}

async function start() {
    try {
        library = await (await import("./animationmodel.js")).default();
    } catch (error) {
        $("missing").textContent = "The module that edits animations did not load " +
            `(${error.message}). It needs the network, and a browser with WebAssembly.`;
        return;
    }
    controls.keys.choices = [];
    showChoice();
    choose(chosen);
    readOther();
    await readAddress();
    listen();
    play(!matchMedia("(prefers-reduced-motion: reduce)").matches);
    $("missing").hidden = true;
    document.body.dataset.ready = "";
}

start();
