"use strict";

for (const link of document.querySelectorAll("#pages li a"))
    if (link.pathname === location.pathname)
        link.setAttribute("aria-current", "page");

document.getElementById("scheme").onclick = () => {
    const toggle = DoxygenAwesomeDarkModeToggle;
    toggle.userPreference = !toggle.darkModeEnabled;
};

for (const picture of document.querySelectorAll("object")) { // what is read aloud of it
    picture.setAttribute("role", "img");
    picture.setAttribute("aria-label", picture.textContent.trim());
}

// What can be clicked can be reached and pressed by keyboard, too.
addEventListener("load", () => {
    for (const button of document.querySelectorAll("doxygen-awesome-fragment-copy-button")) {
        button.tabIndex = 0;
        button.setAttribute("role", "button");
        button.setAttribute("aria-label", button.title);
        button.onkeydown = event => {
            if (event.key !== "Enter" && event.key !== " ")
                return;
            event.preventDefault();
            button.click();
        };
    }
});

// ---- Search: the words of all pages, which words.js has, are read when they are first needed.

const words = document.getElementById("words");
const found = document.getElementById("found");
const mostFound = 12;
let index; // a promise

const loaded = source => new Promise((resolve, reject) => {
    document.head.append(Object.assign(document.createElement("script"),
        { src: source, onload: resolve, onerror: reject }));
});

async function indexed() {
    await loaded("lunr.min.js");
    await loaded("words.js");
    return lunr(function() {
        this.field("title", { boost: 5 });
        this.field("text");
        sections.forEach(([address, , title, text], at) => this.add({ id: at, title, text },
            { boost: address.startsWith("python") ? 0.5 : 1 })); // most read of C++
    });
}

/// The sections that have all words or, if there is none, those that have some, or longer ones.
function sectionsWith(query, index) {
    const tokens = lunr.tokenizer(query).map(String);
    const { presence, wildcard } = lunr.Query;
    let results = index.query(asked => asked.term(tokens, { presence: presence.REQUIRED }));
    if (results.length === 0)
        results = index.query(asked => {
            asked.term(tokens, { boost: 2 });
            asked.term(tokens, { wildcard: wildcard.TRAILING, usePipeline: false });
        });
    return results.slice(0, mostFound).map(result => sections[result.ref]);
}

async function search() {
    const query = words.value.trim();
    index ??= indexed();
    const results = query && sectionsWith(query, await index);
    if (query !== words.value.trim())
        return; // typed on meanwhile
    found.replaceChildren();
    if (query && results.length === 0)
        found.append(`Nothing has "${query}"`);
    for (const [address, page, title] of results) {
        const link = Object.assign(document.createElement("a"), { href: address });
        link.append(title, Object.assign(document.createElement("small"),
            { textContent: page === title ? "" : page }));
        const item = document.createElement("li");
        item.append(link);
        found.append(item);
    }
}

document.getElementById("search").hidden = false;
words.onfocus = () => void (index ??= indexed());
words.oninput = search;
document.getElementById("search").onsubmit = event => {
    event.preventDefault();
    found.querySelector("a")?.click();
};
words.form.onkeydown = event => {
    if (event.key === "Escape") {
        words.value = "";
        found.replaceChildren();
    }
};
