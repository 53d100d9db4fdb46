// The page of a trace. Its data are scripts that call the functions trace...() below, since a page
// that was opened from the disk may load nothing else. Texts of a run become text nodes only.
"use strict";

const stepsInFile = 50;
const tileSize = 128;

const cases = [];        // in the order of their starts
let current = null;      // the case that is shown
let chosen = 0;          // the step that is shown
let showsBefore = false;
let tab = "objects";
let wanted = "";         // what is searched for in the objects
const page = (id) => document.getElementById(id);

function make(tag, className, ...children) {
    const element = document.createElement(tag);
    if (className)
        element.className = className;
    element.append(...children.filter((child) => child !== undefined && child !== ""));
    return element;
}

// Data

function traceBegins() {}

function traceCase(facts) {
    if (!cases.some((one) => one.id === facts.id))
        cases.push({ ...facts, steps: [], sources: {}, states: new Map(), files: 0 });
}

function traceCaseEnds(facts) {
    const one = cases.find((candidate) => candidate.id === facts.id);
    if (one)
        Object.assign(one, facts);
}

// Which file the steps are of that are being told.
let receiving = { of: null, next: 0 };

function traceStep(step) {
    receiving.of.steps[receiving.next++] = step;
}

function traceSource(source) {
    receiving.of.sources[source.path] = source.text.split("\n");
}

// Scripts run one after the other, so that what they tell is known to be theirs.
let loading = Promise.resolve();

function load(one, file, firstStep) {
    loading = loading.then(() => new Promise((resolve) => {
        receiving = { of: one, next: firstStep };
        const script = make("script");
        // A browser may keep what a server gave before.
        script.src = `${one ? one.id + "/" : ""}${file}${isLive() ? `?${Date.now()}` : ""}`;
        script.onload = () => resolve(true);
        script.onerror = () => resolve(false);
        document.head.append(script);
        script.addEventListener("load", () => script.remove());
    }));
    return loading;
}

const stepsFile = (number) => `steps-${String(number).padStart(4, "0")}.js`;

// One at a time for each case: a second one would count its files twice.
function loadSteps(one) {
    one.loading = (one.loading || Promise.resolve()).then(() => loadMoreSteps(one));
    return one.loading;
}

async function loadMoreSteps(one) {
    await load(one, "sources.js", 0);
    for (;;) {
        const first = one.files * stepsInFile;
        if (!await load(one, stepsFile(one.files + 1), first) ||
            one.steps.length < first + stepsInFile)
            return;
        ++one.files;
    }
}

const isLive = () => location.protocol.startsWith("http");

// States: what the screen and the objects were behind a step.

const noState = { size: null, tiles: [], native: null, tree: [], output: {} };

const noObject = { depth: 0, type: "", text: "", name: "", place: [0, 0, 0, 0], state: 0 };

// An object that is told by what differs from a model.
function objectLike(model, told) {
    const object = { ...model, ...told };
    const name = model.text ? model.name.replaceAll(model.text, () => object.text) : model.name;
    const [start, end, between] = told.name || [name.length, 0, ""];
    object.name = name.slice(0, start) + between + name.slice(name.length - end);
    return object;
}

// Adds objects, each of which is told by what differs from the one before it.
function appendObjects(tree, told) {
    for (const object of told)
        tree.push(objectLike(tree[tree.length - 1] || noObject, object));
    return tree;
}

function applyTree(before, changes) {
    const tree = [];
    let next = 0;
    for (const change of changes) {
        if (Array.isArray(change)) {
            appendObjects(tree, change);
        } else if (typeof change === "object") {
            tree.push(objectLike(before[next++], change));
        } else {
            if (change > 0)
                tree.push(...before.slice(next, next + change));
            next += Math.abs(change);
        }
    }
    return tree;
}

function nextState(before, step) {
    const state = { ...before };
    if (step.size)
        Object.assign(state, { size: step.size, tiles: step.tiles, native: step.native || before.native });
    if (step.changed) {
        state.tiles = before.tiles.slice();
        for (const [index, name] of Object.entries(step.changed))
            state.tiles[index] = name;
    }
    if (step.tree)
        state.tree = appendObjects([], step.tree);
    if (step.treeChanges)
        state.tree = applyTree(before.tree, step.treeChanges);
    return state;
}

function stateOf(one, index) {
    if (index < 0)
        return noState;
    let known = index;
    const first = index - index % stepsInFile;
    while (known >= first && !one.states.has(known))
        --known;
    let state = known >= first ? one.states.get(known) : noState;
    for (let step = Math.max(known + 1, first); step <= index; ++step) {
        state = nextState(state, one.steps[step]);
        one.states.set(step, state);
    }
    return state;
}

// The list of steps and the axis

const seconds = (milliseconds) => `${(milliseconds / 1000).toFixed(2)} s`;

function stepTitle(step) {
    if (step.kind === "action")
        return `${step.title}(${step.arguments})`;
    if (step.kind === "end")
        return `end of ${step.title}`;
    return step.type ? `${step.type}: ${step.title || step.detail}` : step.title;
}

function stepClass(step) {
    return step.failed ? "failed" : step.type === "Pass" ? "passed" : step.kind;
}

function showSteps() {
    page("steps").replaceChildren(...current.steps.map((step, index) => {
        const row = make("div", `step ${stepClass(step)}`, make("span", "what", stepTitle(step)),
            make("span", "when", seconds(step.at)));
        row.title = step.file ? `${stepTitle(step)}\n${step.file}:${step.line}` : stepTitle(step);
        row.addEventListener("click", () => choose(index));
        return row;
    }));
    const last = current.steps[current.steps.length - 1];
    const length = Math.max(1, last ? last.at : 1);
    page("axis").replaceChildren(...current.steps.map((step, index) => {
        const mark = make("span", step.failed ? "failed" : "");
        const duration = step.milliseconds || 0;
        mark.style.left = `${100 * Math.max(0, step.at - duration) / length}%`;
        mark.style.width = `${100 * duration / length}%`;
        mark.title = stepTitle(step);
        mark.addEventListener("click", () => choose(index));
        mark.hidden = step.kind === "end" || step.kind === "section";
        return mark;
    }));
    const failures = current.steps.filter((step) => step.failed && step.kind === "result").length;
    page("summary").textContent = `${current.outcome || "not ended"} · ${current.steps.length} steps` +
        (failures ? ` · ${failures} failed` : "");
}

// The screen

// Of the tiles that were shown, the last ones by name: a step back and forth needs no look at the disk.
const tileImages = new Map();
const mostTileImages = 2000;

function tileImage(name) {
    let image = tileImages.get(name);
    if (image)
        return image;
    image = new Image();
    // A running case whose trace is perhaps not kept has its tiles for itself.
    const own = `${current.id}/tiles/${name}.png`;
    image.addEventListener("error", () => {
        if (!image.src.endsWith(own))
            image.src = own;
    });
    image.src = `tiles/${name}.png`;
    if (tileImages.size >= mostTileImages)
        tileImages.delete(tileImages.keys().next().value);
    tileImages.set(name, image);
    return image;
}

// The state whose tiles are being drawn: those of another one may come late.
let drawn = null;

const isLoaded = (image) => image.complete && image.naturalWidth > 0;

// A tile is the name of a picture, or the names of one and of another one that lies on it.
function drawTile(state, tile, x, y) {
    const images = [].concat(tile).map(tileImage);
    const draw = () => {
        if (drawn !== state || !images.every(isLoaded))
            return;
        for (const image of images)
            page("picture").getContext("2d").drawImage(image, x, y);
    };
    for (const image of images.filter((each) => !isLoaded(each)))
        image.addEventListener("load", draw, { once: true });
    draw();
}

function showPicture(state) {
    const canvas = page("picture");
    const marks = page("marks");
    marks.replaceChildren();
    drawn = state;
    canvas.hidden = !state.size;
    page("none").hidden = Boolean(state.size);
    if (!state.size)
        return;
    const [width, height] = state.size;
    if (canvas.width !== width || canvas.height !== height) {
        canvas.width = width;
        canvas.height = height;
    }
    const columns = Math.ceil(width / tileSize);
    state.tiles.forEach((tile, index) => drawTile(state, tile,
        index % columns * tileSize, Math.floor(index / columns) * tileSize));
    marks.style.width = `${width}px`;
    marks.style.height = `${height}px`;
    marks.style.transform = `scale(${canvas.clientWidth / width})`;
}

function mark(className, x, y, width, height) {
    const element = make("div", className);
    element.style.left = `${x}px`;
    element.style.top = `${y}px`;
    if (width !== undefined) {
        element.style.width = `${width}px`;
        element.style.height = `${height}px`;
    }
    page("marks").append(element);
}

function frameObject(state, object) {
    for (const old of page("marks").querySelectorAll(".frame"))
        old.remove();
    if (!state.size || !state.native)
        return;
    const [left, top, right, bottom] = state.native;
    const horizontal = state.size[0] / Math.max(1, right - left);
    const vertical = state.size[1] / Math.max(1, bottom - top);
    const [x, y, width, height] = object.place;
    mark("frame", (x - left) * horizontal, (y - top) * vertical, width * horizontal, height * vertical);
}

// The details

function copyText(text) {
    const area = make("textarea", "", text);
    document.body.append(area);
    area.select();
    document.execCommand("copy");
    area.remove();
}

function objectElement(state, object, className) {
    const { depth, type, text, name, state: flags } = object;
    const line = make("div", `object ${className} ${flags & 1 ? "" : "hidden"}`,
        `${type}${text ? ` "${text}"` : ""}${flags & 2 ? "" : " (disabled)"}`);
    line.style.paddingLeft = `${wanted ? 0.2 : 0.2 + depth}em`;
    line.addEventListener("click", () => {
        frameObject(state, object);
        for (const old of page("panel").querySelectorAll(".object.chosen")) {
            old.classList.remove("chosen");
            old.querySelector("code").remove();
            old.querySelector("button").remove();
        }
        if (!name)
            return;
        line.classList.add("chosen");
        const copy = make("button", "", "Copy name");
        copy.type = "button";
        copy.addEventListener("click", (event) => {
            event.stopPropagation();
            copyText(name);
            copy.textContent = "Copied";
        });
        line.append(make("code", "", name), copy);
    });
    return line;
}

// What is in one state only.
function differences(state, before) {
    const told = (object) => JSON.stringify(Object.values(object));
    const known = new Set(before.tree.map(told));
    const now = new Set(state.tree.map(told));
    return {
        added: new Set(state.tree.filter((object) => !known.has(told(object)))),
        gone: new Set(before.tree.filter((object) => !now.has(told(object)))),
    };
}

function showObjects(panel, state, before) {
    const { added, gone } = differences(state, before);
    const search = make("input");
    search.type = "search";
    search.placeholder = `Search ${state.tree.length} objects`;
    search.value = wanted;
    const list = make("div");
    const show = () => {
        wanted = search.value.toLowerCase();
        const shown = state.tree.filter((object) =>
            `${object.type} ${object.text} ${object.name}`.toLowerCase().includes(wanted));
        list.replaceChildren(...shown.slice(0, 2000).map((object) =>
            objectElement(state, object, before.tree.length > 0 && added.has(object) ? "added" : "")));
        if (gone.length > 0 && !wanted) {
            list.append(make("p", "muted", "Changed or gone in this step:"),
                ...[...gone].slice(0, 200).map((object) => objectElement(state, object, "removed")));
        }
    };
    search.addEventListener("input", show);
    show();
    panel.append(search, list);
}

function showChanges(panel, state, before) {
    const { added, gone } = differences(state, before);
    panel.append(make("p", "muted", added.size + gone.size === 0 ? "No object has changed."
        : `${gone.size} objects as they were, ${added.size} as they are:`));
    panel.append(...[...gone].slice(0, 500).map((object) => objectElement(before, object, "removed")),
        ...[...added].slice(0, 500).map((object) => objectElement(state, object, "added")));
}

function showScript(panel, step) {
    const lines = current.sources[step.file];
    panel.append(make("p", "muted", step.file ? `${step.file}:${step.line}` : "No position."));
    if (!lines)
        return;
    const source = make("div", "source");
    lines.forEach((text, index) => source.append(make("div", index + 1 === step.line ? "hit" : "",
        make("span", "number", String(index + 1)), text || " ")));
    panel.append(source);
    const hit = source.querySelector(".hit");
    if (hit)
        hit.scrollIntoView({ block: "center" });
}

function showOutput(panel) {
    const parts = new Map();
    for (const step of current.steps.slice(0, chosen + 1)) {
        for (const [name, text] of Object.entries(step.output || {}))
            parts.set(name, (parts.get(name) || "") + text);
        if (step.kind === "stdout" || step.kind === "stderr") {
            const name = step.kind === "stdout" ? "the script's output" : "the script's errors";
            parts.set(name, (parts.get(name) || "") + step.title);
        }
    }
    if (parts.size === 0)
        panel.append(make("p", "muted", "Nothing was written up to here."));
    for (const [name, text] of parts)
        panel.append(make("div", "", name), make("pre", "", text));
}

function showStep(panel, step) {
    panel.append(make("p", "", make("strong", "", stepTitle(step))));
    const facts = [`at ${seconds(step.at)}`, step.time,
        step.milliseconds !== undefined ? `took ${step.milliseconds} ms` : "",
        step.failed ? "failed" : ""];
    panel.append(make("p", "muted", facts.filter(Boolean).join(" · ")));
    for (const text of [step.detail, step.explanation]) {
        if (text)
            panel.append(make("pre", "", text));
    }
}

const tabs = {
    step: ["Step", (panel, step) => showStep(panel, step)],
    objects: ["Objects", (panel, step, state, before) => showObjects(panel, state, before)],
    changes: ["Changes", (panel, step, state, before) => showChanges(panel, state, before)],
    script: ["Script", (panel, step) => showScript(panel, step)],
    output: ["Output", (panel) => showOutput(panel)],
};

function showFacts() {
    const step = current.steps[chosen];
    page("tabs").replaceChildren(...Object.entries(tabs).map(([name, [label]]) => {
        const button = make("button", name === tab ? "chosen" : "", label);
        button.type = "button";
        button.addEventListener("click", () => {
            tab = name;
            showFacts();
        });
        return button;
    }));
    const panel = page("panel");
    panel.replaceChildren();
    if (step)
        tabs[tab][1](panel, step, stateOf(current, chosen), stateOf(current, chosen - 1));
}

// Choosing

function showChosen() {
    const step = current.steps[chosen];
    if (!step)
        return;
    for (const list of [page("steps"), page("axis")]) {
        for (const old of list.querySelectorAll(".chosen"))
            old.classList.remove("chosen");
        if (list.children[chosen])
            list.children[chosen].classList.add("chosen");
    }
    page("steps").children[chosen].scrollIntoView({ block: "nearest" });
    page("before").className = showsBefore ? "chosen" : "";
    page("after").className = showsBefore ? "" : "chosen";
    page("place").textContent = step.point ? `pressed at ${step.point.join(", ")}` : "";
    showPicture(stateOf(current, showsBefore ? chosen - 1 : chosen));
    if (step.point)
        mark("press", ...step.point);
    showFacts();
}

function choose(index) {
    chosen = Math.max(0, Math.min(index, current.steps.length - 1));
    showChosen();
}

function chooseFailure() {
    const next = current.steps.findIndex((step, index) => index > chosen && step.failed);
    choose(next >= 0 ? next : current.steps.findIndex((step) => step.failed));
}

async function showCase(one, time) {
    current = one;
    page("cases").value = one.id;
    await loadSteps(one);
    if (current !== one)
        return;
    showSteps();
    const index = time ? one.steps.findIndex((step) => step.time === time) : -1;
    const failure = one.steps.findIndex((step) => step.failed);
    choose(index >= 0 ? index : Math.max(0, failure));
}

function showCaseList() {
    const kept = cases.filter((one) => one.kept !== false);
    page("cases").replaceChildren(...kept.map((one) => {
        const attempt = one.attempt > 1 ? `, attempt ${one.attempt}` : "";
        const option = make("option", "", `${one.name}${attempt} (${one.outcome || "not ended"})`);
        option.value = one.id;
        return option;
    }));
    if (current)
        page("cases").value = current.id;
    return kept;
}

// Of a link from a report: "#at=TIME&case=NAME" is the step of that moment.
function linkedStep(kept) {
    const link = new URLSearchParams(location.hash.slice(1));
    const time = link.get("at") || "";
    const ofName = kept.filter((one) => one.name === link.get("case"));
    const started = ofName.filter((one) => one.time <= time);
    return [started[started.length - 1] || ofName[0], time];
}

async function follow() {
    const wasNewest = !current || current === cases[cases.length - 1];
    const wasLast = !current || chosen >= current.steps.length - 1;
    const hadEnded = !current || Boolean(current.outcome);
    await load(null, "cases.js", 0);
    const kept = showCaseList();
    const newest = kept[kept.length - 1];
    // Who looks at the end of one case goes on with the next.
    if (hadEnded && wasNewest && wasLast && newest && newest !== current) {
        await showCase(newest);
        choose(newest.steps.length - 1);
        return;
    }
    if (hadEnded)
        return;
    const count = current.steps.length;
    await loadSteps(current);
    if (current.steps.length === count)
        return;
    showSteps();
    choose(wasLast ? current.steps.length - 1 : chosen);
}

let isFollowing = false;

function keepFollowing() {
    setTimeout(() => follow().finally(keepFollowing), 1000);
}

function traceLoaded() {
    const kept = showCaseList();
    if (kept.length === 0) {
        page("summary").textContent = cases.length > 0 ? "All cases passed; none was kept."
            : "No case has begun.";
    } else {
        const [linked, time] = linkedStep(kept);
        showCase(linked || kept.find((one) => one.outcome === "failed") || kept[0], time);
    }
    if (isLive() && !isFollowing) {
        isFollowing = true;
        keepFollowing();
    }
}

page("cases").addEventListener("change", (event) =>
    showCase(cases.find((one) => one.id === event.target.value)));
page("before").addEventListener("click", () => { showsBefore = true; showChosen(); });
page("after").addEventListener("click", () => { showsBefore = false; showChosen(); });
window.addEventListener("resize", () => current && showChosen());
window.addEventListener("hashchange", traceLoaded);
document.addEventListener("keydown", (event) => {
    if (!current || event.target.matches("input, select") || event.ctrlKey || event.metaKey)
        return;
    const actions = {
        ArrowDown: () => choose(chosen + 1),
        ArrowUp: () => choose(chosen - 1),
        Home: () => choose(0),
        End: () => choose(current.steps.length - 1),
        f: chooseFailure,
        b: () => { showsBefore = !showsBefore; showChosen(); },
    };
    const action = actions[event.key];
    if (action) {
        event.preventDefault();
        action();
    }
});
