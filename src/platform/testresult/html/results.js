// Results, their files and pictures.

function excerptElement(excerpt) {
    if (excerpt.problem)
        return make("p", "problem", excerpt.problem);
    const lines = excerpt.lines.map((text, index) => {
        const number = excerpt.first + index;
        return make("div", number === excerpt.line ? "hit" : "",
            make("span", "number", String(number)), make("code", "", text));
    });
    return make("div", "", make("div", "excerpt", ...lines),
        excerpt.note ? make("p", "note", excerpt.note) : "");
}

function stackElement(entry, row) {
    const stack = make("div", "stack");
    const calls = entry.stack.map((call, index) => ({ ...call, index }));
    appendAll(stack, calls, (call) => {
        const position = make("span", "position",
            (call.index > 0 ? "called from " : "") + shortPath(call.position, row));
        position.title = call.position;
        if (call.excerpt === undefined)
            return make("div", "", position);
        return foldable("call", [position], call.index === 0,
            (inside) => inside.append(excerptElement(data.excerpts[call.excerpt])));
    });
    return stack;
}

function enlarge(file) {
    const image = make("img");
    image.src = file.path;
    image.alt = file.name;
    const dialog = make("dialog", "", image);
    dialog.addEventListener("click", () => dialog.close());
    dialog.addEventListener("close", () => dialog.remove());
    document.body.append(dialog);
    dialog.showModal();
}

// `title` says what the picture shows, if that is known.
function pictureElement(file, title) {
    const image = make("img");
    image.src = file.path;
    image.alt = file.name;
    const button = make("button", "", image);
    button.type = "button";
    button.title = "Enlarge";
    button.addEventListener("click", () => enlarge(file));
    image.addEventListener("error", () => button.replaceWith(
        make("p", "problem", `The picture '${file.path}' can't be shown.`)));
    return make("figure", "picture", button,
        make("figcaption", "", title ? `${title}: ` : "", link(file.name, file.path)));
}

// The objects of an application: a search, and each name to be copied.
function treeElement(tree) {
    const list = make("div", "tree");
    const search = make("input");
    search.type = "search";
    search.placeholder = `Search ${tree.length} objects`;
    search.setAttribute("aria-label", search.placeholder);
    const show = () => {
        const wanted = search.value.toLowerCase();
        list.replaceChildren();
        appendAll(list, tree.filter(([, text, name]) =>
            `${text} ${name}`.toLowerCase().includes(wanted)), ([depth, text, name]) => {
            const line = make("div", "object", make("span", "what", text));
            line.style.paddingLeft = `${wanted === "" ? depth : 0}em`;
            if (name)
                line.append(make("code", "", name), copyButton("Copy", () => name));
            return line;
        });
    };
    search.addEventListener("input", show);
    show();
    return make("div", "objects", search, list);
}

function fillFile(inside, file, title) {
    if (file.problem) {
        inside.append(make("p", "problem", file.problem));
    } else if (file.tree !== undefined) {
        inside.append(treeElement(data.trees[file.tree]),
            make("p", "note", link(file.name, file.path)));
    } else if (file.kind === "image") {
        inside.append(pictureElement(file, title));
    } else if (file.kind === "video") {
        inside.append(make("figure", "video", playerElement(file),
            make("figcaption", "", link(file.name, file.path))));
    } else {
        if (file.text !== undefined)
            inside.append(make("pre", "output", file.text));
        inside.append(make("p", "note", file.note || "", " ", link(file.name, file.path)));
    }
}

function fileElement(entry, isOpen) {
    const file = entry.file;
    const brief = make("span", "what", entry.message,
        make("span", "note", (entry.message ? ": " : "") + file.name));
    const isShown = isOpen || file.problem ||
        (file.kind === "image" && !entry.belongsToResult);
    return foldable("entry", [make("span", "badge", entry.label), brief, timeOf(entry)],
        isShown, (inside) => fillFile(inside, file));
}

// A failure as text, for a message to somebody.
function failureText(entry, row) {
    const stack = entry.stack || [];
    return [`${row.name}: ${stack.length > 0 ? `${stack[0].position}: ` : ""}` +
        `${entry.label}: ${entry.message}`, entry.detail, entry.comment, entry.explanation,
        ...stack.slice(1).map((call) => `called from ${call.position}`),
    ].filter(Boolean).join("\n");
}

// Links to the texts that stand in parts only.
function wholesElement(entry) {
    const links = make("p", "note");
    for (const whole of entry.wholes || [])
        links.append(link(`The whole ${whole.name}`, whole.path), " ");
    return links;
}

// What helps to understand a result: of the differences of two texts, lines that only one of
// them has begin with "-" and "+".
function explanationElement(text) {
    const classes = { "-": "removed", "+": "added", "@": "place" };
    const isDifference = text.split("\n").some((line) => line.startsWith("@@ "));
    const block = make("pre", "explanation");
    appendAll(block, text.split("\n"), (line) =>
        make("span", (isDifference && classes[line[0]]) || "", line + "\n"));
    return block;
}

// What shows the moment of a result: the application's windows beside the whole display, and
// the objects.
function fillMoment(inside, entry) {
    const attached = entry.attached || [];
    const pictures = make("div", "pictures");
    for (const { file, message } of attached.filter(({ file }) => file.kind === "image"))
        fillFile(pictures, file, message);
    if (entry.screenshot)
        fillFile(pictures, entry.screenshot);
    if (pictures.firstChild)
        inside.append(pictures);
    for (const other of attached.filter(({ file }) => file.kind !== "image"))
        inside.append(fileElement(other, false));
}

function resultElement(entry, row, isOpen) {
    const kind = entry.label.toLowerCase().replace(/[^a-z0-9]+/g, "-");
    const summary = [make("span", `badge ${kind}`, entry.label),
        make("span", "what", entry.message,
            entry.detail ? make("span", "more-text",
                (entry.message ? ": " : "") + firstLine(entry.detail)) : ""),
        timeOf(entry)];
    if (!entry.detail && !entry.comment && !entry.explanation && !entry.stack &&
        !entry.screenshot && !entry.echo && !entry.wholes && !entry.attached &&
        !videoOf.has(entry))
        return make("div", "entry flat", ...summary);
    return foldable(entry.failure && isOpen ? "entry failure" : "entry", summary, isOpen,
        (inside) => {
            if (entry.detail)
                inside.append(make("pre", "detail", entry.detail));
            if (entry.comment)
                inside.append(make("p", "comment", entry.comment));
            if (entry.explanation)
                inside.append(explanationElement(entry.explanation));
            if (entry.wholes)
                inside.append(wholesElement(entry));
            if (entry.echo)
                inside.append(make("p", "comment", "This is how the skipped case ended."));
            if (entry.stack)
                inside.append(stackElement(entry, row));
            fillMoment(inside, entry);
            if (entry.failure)
                inside.append(copyButton("Copy this text", () => failureText(entry, row)),
                    toVideoElement(entry));
            if (entry.trace)
                inside.append(make("p", "note", link("This moment in the trace", entry.trace)));
        });
}

function outputElement(entry) {
    return foldable("entry", [make("span", "badge", entry.label),
        make("span", "what", make("span", "more-text", firstLine(entry.message.trim()))),
        timeOf(entry)], false,
        (inside) => inside.append(make("pre", "output", entry.message),
            wholesElement(entry)));
}
