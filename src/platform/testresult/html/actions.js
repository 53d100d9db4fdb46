// What scripts did to applications.

function actionText(entry) {
    return make("span", "what", make("b", "", entry.message), entry.detail
        ? ` ${entry.detail}` : "");
}

function actionElement(entry, row) {
    const position = make("span", "position", shortPath(entry.position || "", row));
    position.title = entry.position || "";
    return make("div", `entry flat action ${entry.failed ? "failed" : ""}`,
        make("span", "badge", entry.failed ? "Action failed" : "Action"), actionText(entry),
        position, make("span", "time", `took ${duration(entry.took)}`), timeOf(entry));
}

// What the script did, and what failed, along the time of the case.
function timelineElement(items, row) {
    const last = items[items.length - 1];
    const total = Math.max(row.milliseconds, last.at, 1);
    const percent = (milliseconds) => `${(100 * milliseconds / total).toFixed(2)}%`;
    const scale = make("div", "scale");
    for (let part = 0; part <= 4; ++part)
        scale.append(make("span", "", duration(total * part / 4)));
    const timeline = make("div", "timeline",
        make("div", "line", make("span", "what"), make("span", "took"), scale));
    appendAll(timeline, items, (entry) => {
        const took = entry.took || 0;
        const bar = make("span", "bar");
        bar.style.left = percent(Math.max(0, entry.at - took));
        bar.style.width = percent(Math.min(took, entry.at));
        const isAction = entry.kind === "action";
        const text = isAction ? actionText(entry)
            : make("span", "what", `${entry.label}: ${entry.message}`);
        const line = make("div", isAction ? "line" : "line result", text,
            make("span", "took", isAction ? duration(took) : ""),
            make("span", "track", bar));
        if (entry.failed || !isAction)
            line.classList.add("failed");
        line.title = `${entry.time}  ${entry.position || ""}`;
        return line;
    });
    return timeline;
}

// Actions that follow each other, folded.
function withActionsGrouped(nodes) {
    const grouped = [];
    for (const node of nodes) {
        const before = grouped[grouped.length - 1];
        if (node.entry.kind !== "action")
            grouped.push(node);
        else if (before && before.actions)
            before.actions.push(node.entry);
        else
            grouped.push({ entry: { kind: "actions" }, actions: [node.entry] });
    }
    return grouped;
}

function actionsElement(actions, row) {
    if (actions.length === 1)
        return actionElement(actions[0], row);
    const first = actions[0];
    const took = actions.reduce((sum, action) => sum + action.took, 0);
    const failures = actions.filter((action) => action.failed).length;
    return foldable("entry", [make("span", "badge", "Actions"),
        make("span", "what", `${actions.length} actions`, make("span", "more-text",
            `: ${first.message} ${firstLine(first.detail || "")} ...`)),
        failures > 0 ? make("span", "badge failed", `${failures} failed`) : "",
        make("span", "time", `took ${duration(took)}`), timeOf(first)], false,
        (inside) => appendAll(inside, actions, (action) => actionElement(action, row)));
}
