// Features, scenarios and steps, as parts of the tree of a case.

// The text of a step with its parameters marked.
function stepText(node) {
    const text = node.entry.message;
    const parts = [];
    let end = 0;
    for (const [begin, behind] of (node.match && node.match.parameters) || []) {
        // Groups may lie in each other.
        if (begin < end)
            continue;
        parts.push(text.slice(end, begin), make("b", "parameter", text.slice(begin, behind)));
        end = behind;
    }
    return [...parts, text.slice(end)];
}

// What tells of the step's definition.
function matchElement(match, row) {
    return make("p", "comment", make("code", "", match.definition), " ",
        make("span", "position", shortPath(match.position || "", row)));
}

// A feature, a scenario, a row of examples or a step.
function itemElement(node, row) {
    const entry = node.entry;
    const item = node.item || {};
    const keyword = !item.keyword ? "" : make("span", "keyword",
        entry.section === "step" ? item.keyword : `${item.keyword}: `);
    const summary = [make("span", "what", keyword, ...stepText(node)),
        item.tags ? make("span", "tags", item.tags) : "",
        node.failures > 0 ? make("span", "badge failed", "Failed") : "",
        make("span", "time", node.isSkipped ? "skipped" : duration(node.last - entry.at))];
    const argument = item.argument ? make("pre", "argument", item.argument) : "";
    const className = `entry section item ${entry.section} ${node.isSkipped ? "skipped" : ""}`;
    if (node.children.length === 0 && !entry.detail && !node.match)
        return make("div", "step-line", make("div", `${className} flat`, ...summary), argument);
    const isOpen = node.failures > 0 || entry.section !== "step";
    const element = foldable(className, summary, isOpen, (inside) => {
        if (entry.detail)
            inside.append(make("p", "comment", entry.detail));
        if (node.match)
            inside.append(matchElement(node.match, row));
        appendAll(inside, withActionsGrouped(node.children), (child) => nodeElement(child, row));
    });
    return make("div", "step-line", element, argument);
}
