// What happened in a case, as a tree.

// Attachments of a result stand in front of it.
for (const entries of data.entries) {
    let waiting = [];
    for (const entry of entries) {
        if (entry.belongsToResult) {
            waiting.push(entry);
        } else if (entry.kind === "result") {
            if (waiting.length > 0)
                entry.attached = waiting;
            waiting = [];
        }
    }
}

// Entries as a tree: sections hold what happened in them. A section without an end, as a run
// that was killed leaves it, reaches to the last entry.
function treeOf(entries) {
    const root = { children: [] };
    const open = [root];
    for (const entry of entries) {
        for (const node of open)
            node.last = entry.at;
        if (entry.kind === "sectionEnd") {
            if (open.length > 1)
                open.pop();
            continue;
        }
        const innermost = open[open.length - 1];
        // These tell more of the part of a feature that has begun.
        if (entry.kind === "item" || entry.kind === "match") {
            innermost[entry.kind] = entry;
            continue;
        }
        if (entry.skipped === "step") {
            innermost.isSkipped = true;
            continue;
        }
        const node = { entry, children: [], failures: 0, last: entry.at };
        innermost.children.push(node);
        if (entry.kind === "sectionStart")
            open.push(node);
        else if (entry.failure)
            open.forEach((outer) => ++outer.failures);
    }
    return root.children;
}

function sectionElement(node, row) {
    const entry = node.entry;
    const took = make("span", "time", duration(node.last - entry.at));
    took.title = `from ${entry.time}`;
    const failures = node.failures === 0 ? ""
        : make("span", "badge failed", node.failures === 1 ? "1 failure"
            : `${node.failures} failures`);
    return foldable("entry section", [make("span", "what", entry.message), failures, took],
        node.failures > 0, (inside) => {
            if (entry.detail)
                inside.append(make("p", "comment", entry.detail));
            appendAll(inside, withActionsGrouped(node.children),
                (child) => nodeElement(child, row));
        });
}

function nodeElement(node, row) {
    switch (node.entry.kind) {
    case "sectionStart":
        return node.entry.section ? itemElement(node, row) : sectionElement(node, row);
    case "file":
        return fileElement(node.entry, false);
    case "output":
        return outputElement(node.entry);
    case "actions":
        return actionsElement(node.actions, row);
    default:
        return resultElement(node.entry, row, false);
    }
}

function fillCase(body, row) {
    const entries = data.entries[row.id];
    const facts = [row.path && shortPath(row.path, row), row.start && `started ${row.start}`,
        row.results].filter(Boolean);
    body.append(make("p", "facts", facts.join(" · ")));
    const failures = entries.filter((entry) => entry.failure);
    if (failures.length > 0) {
        body.append(make("h3", "", failures.length === 1 ? "Failure"
            : `${failures.length} failures`));
        appendAll(body, failures, (entry) => resultElement(entry, row, true));
    }
    appendAll(body, entries.filter((entry) => entry.kind === "video"),
        (entry) => videoElement(entry, row, failures.length > 0));
    if (row.outcome !== "passed") {
        const files = entries.filter((entry) => entry.isApplicationOutput ||
            (entry.file && entry.file.kind === "image" && !entry.belongsToResult));
        appendAll(body, files, (entry) => fileElement(entry, false));
    }
    const actions = entries.filter((entry) => entry.kind === "action");
    if (actions.length > 0) {
        const items = entries.filter((entry) => entry.kind === "action" || entry.failure);
        body.append(foldable("entry section",
            [make("span", "what", `Actions (${actions.length})`)], false,
            (inside) => inside.append(timelineElement(items, row))));
    }
    const addTree = (inside) => appendAll(inside, withActionsGrouped(treeOf(entries)),
        (node) => nodeElement(node, row));
    if (failures.length > 0) {
        body.append(foldable("entry section",
            [make("span", "what", `Everything that happened (${entries.length})`)],
            entries.some((entry) => entry.section === "feature"),
            addTree));
    } else if (entries.length > 0) {
        addTree(body);
    } else {
        body.append(make("p", "nothing", "Nothing was recorded."));
    }
}
