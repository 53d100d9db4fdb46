// The data of the report, and what all parts of the page are made with.
//
// Everything is made as elements and text nodes, never as HTML, so that no text of a run can become
// part of the page's code. Details are made when they are opened.

const data = JSON.parse(document.getElementById("data").textContent);

// Lists longer than this show the rest on demand.
const chunk = 300;

function make(tag, className, ...children) {
    const element = document.createElement(tag);
    if (className)
        element.className = className;
    element.append(...children.filter((child) => child !== undefined && child !== ""));
    return element;
}

function link(text, target) {
    const element = make("a", "", text);
    element.href = target;
    return element;
}

// A foldable element; `fill(inside)` makes what it holds when it is opened first.
function foldable(className, summary, isOpen, fill) {
    const element = make("details", className, make("summary", "", ...summary));
    let isFilled = false;
    const ensureFilled = () => {
        if (isFilled)
            return;
        isFilled = true;
        const inside = make("div", className.startsWith("case") ? "body" : "inside");
        fill(inside);
        element.append(inside);
    };
    element.addEventListener("toggle", () => element.open && ensureFilled());
    element.unfold = () => {
        ensureFilled();
        element.open = true;
    };
    if (isOpen)
        element.unfold();
    return element;
}

// Appends what `render` makes of each item, a chunk at a time.
function appendAll(container, items, render) {
    let shown = 0;
    const more = make("button", "more");
    more.type = "button";
    const showChunk = () => {
        more.remove();
        container.append(...items.slice(shown, shown + chunk).map(render));
        shown += chunk;
        if (shown < items.length) {
            more.textContent = `Show more (${items.length - shown} left)`;
            container.append(more);
        }
    };
    more.addEventListener("click", showChunk);
    showChunk();
}

function duration(milliseconds) {
    if (milliseconds < 60000)
        return `${(milliseconds / 1000).toFixed(2)} s`;
    const seconds = Math.round(milliseconds / 1000);
    const minutes = Math.floor(seconds / 60);
    const twoDigits = (number) => String(number).padStart(2, "0");
    return minutes < 60 ? `${minutes}:${twoDigits(seconds % 60)} min`
        : `${Math.floor(minutes / 60)}:${twoDigits(minutes % 60)}:${twoDigits(seconds % 60)} h`;
}

// A path as it is known in the suite.
function shortPath(path, row) {
    const folder = data.suites[row.suite].path + "/";
    return folder.length > 1 && path.startsWith(folder) ? path.slice(folder.length) : path;
}

function timeOf(entry) {
    const element = make("span", "time", `+${duration(entry.at)}`);
    element.title = entry.time;
    return element;
}

function firstLine(text) {
    const end = text.indexOf("\n");
    return (end < 0 ? text : text.slice(0, end)).slice(0, 300);
}

// Copying needs the clipboard, which a browser may keep from a page that was opened as a file.
function copyText(text) {
    if (navigator.clipboard)
        return navigator.clipboard.writeText(text).catch(() => copySelection(text));
    return Promise.resolve(copySelection(text));
}

function copySelection(text) {
    const area = make("textarea", "copied", text);
    (document.querySelector("dialog[open]") || document.body).append(area);
    area.select();
    document.execCommand("copy");
    area.remove();
}

function copyButton(label, textOf) {
    const button = make("button", "copy", label);
    button.type = "button";
    button.addEventListener("click", (event) => {
        // It may stand in a summary.
        event.preventDefault();
        copyText(textOf()).then(() => {
            button.textContent = "Copied";
            setTimeout(() => { button.textContent = label; }, 1500);
        });
    });
    return button;
}
