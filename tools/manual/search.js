// The search: words of what is looked for, in an index that is a script as well, so that it works
// from a file. Names come first, then headings, then texts.
"use strict";

const field = document.getElementById("search");
const found = document.getElementById("found");
const root = document.currentScript.src.replace(/[^/]*$/, "");

function rank(entry, words) {
    const name = entry[0].toLowerCase();
    const all = name + " " + entry[2].toLowerCase();
    if (!words.every(word => all.includes(word))) return 0;
    if (name === words.join(" ")) return 4;
    if (name.startsWith(words[0])) return 3;
    return words.every(word => name.includes(word)) ? 2 : 1;
}

function show() {
    const words = field.value.toLowerCase().split(/\s+/).filter(word => word);
    const hits = words.length === 0 ? [] : searchIndex
        .map(entry => ({ entry, rank: rank(entry, words) }))
        .filter(hit => hit.rank > 0)
        .sort((a, b) => b.rank - a.rank || a.entry[0].length - b.entry[0].length)
        .slice(0, 20);
    found.replaceChildren(...hits.map(hit => {
        const link = document.createElement("a");
        link.href = root + hit.entry[1];
        link.textContent = hit.entry[0];
        const where = document.createElement("small");
        where.textContent = hit.entry[3];
        link.append(where);
        const item = document.createElement("li");
        item.append(link);
        return item;
    }));
    if (words.length > 0 && hits.length === 0) found.textContent = "Nothing found";
    found.hidden = words.length === 0;
}

field.addEventListener("input", show);
document.addEventListener("keydown", event => {
    if (event.key === "/" && document.activeElement !== field) {
        event.preventDefault();
        field.focus();
    } else if (event.key === "Escape") {
        field.value = "";
        show();
    } else if (event.key === "Enter" && document.activeElement === field) {
        const first = found.querySelector("a");
        if (first) location.href = first.href;
    }
});

// The page that is shown, in the contents.
for (const link of document.querySelectorAll("nav a")) {
    if (link.href === location.href.replace(/#.*$/, "")) link.setAttribute("aria-current", "page");
}
