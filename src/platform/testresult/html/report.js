"use strict";
// Shows the report. Everything is made as elements and text nodes, never as HTML, so that no text
// of a run can become part of the page's code. Details are made when they are opened.

(() => {
    const data = JSON.parse(document.getElementById("data").textContent);

    // Lists longer than this show the rest on demand.
    const chunk = 300;

    // --- Helpers -----------------------------------------------------------------------------

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

    // --- What happened in a case -------------------------------------------------------------

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

    function pictureElement(file) {
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
            make("figcaption", "", link(file.name, file.path)));
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

    function fillFile(inside, file) {
        if (file.problem) {
            inside.append(make("p", "problem", file.problem));
        } else if (file.tree !== undefined) {
            inside.append(treeElement(data.trees[file.tree]),
                make("p", "note", link(file.name, file.path)));
        } else if (file.kind === "image") {
            inside.append(pictureElement(file));
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
        for (const { file } of attached.filter(({ file }) => file.kind === "image"))
            fillFile(pictures, file);
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
            !entry.screenshot && !entry.echo && !entry.wholes && !entry.attached)
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
                    inside.append(copyButton("Copy this text", () => failureText(entry, row)));
            });
    }

    function outputElement(entry) {
        return foldable("entry", [make("span", "badge", entry.label),
            make("span", "what", make("span", "more-text", firstLine(entry.message.trim()))),
            timeOf(entry)], false,
            (inside) => inside.append(make("pre", "output", entry.message),
                wholesElement(entry)));
    }

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

    // --- Actions -----------------------------------------------------------------------------

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
            const node = { entry, children: [], failures: 0, last: entry.at };
            open[open.length - 1].children.push(node);
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
            return sectionElement(node, row);
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
                [make("span", "what", `Everything that happened (${entries.length})`)], false,
                addTree));
        } else if (entries.length > 0) {
            addTree(body);
        } else {
            body.append(make("p", "nothing", "Nothing was recorded."));
        }
    }

    // --- The list of cases -------------------------------------------------------------------

    const labels = new Map(data.outcomes.map((outcome) => [outcome.id, outcome.label]));

    function caseElement(row) {
        if (!row.element) {
            row.element = foldable(`case ${row.outcome || ""}`, [
                make("span", "badge", labels.get(row.outcome) || "note"),
                make("span", "name", row.name),
                make("span", "brief", firstLine(row.brief || "")),
                make("span", "time", duration(row.milliseconds)),
            ], false, (body) => fillCase(body, row));
            row.element.id = `case-${row.id}`;
            row.element.dataset.outcome = row.outcome || "";
        }
        return row.element;
    }

    // All texts of a case, for the search.
    function textOf(row) {
        if (row.text === undefined) {
            const texts = [row.name, row.path];
            for (const entry of data.entries[row.id]) {
                texts.push(entry.message, entry.detail, entry.comment, entry.explanation);
                if (entry.file)
                    texts.push(entry.file.name, entry.file.text);
            }
            row.text = texts.filter(Boolean).join("\n").toLowerCase();
        }
        return row.text;
    }

    // --- The page ----------------------------------------------------------------------------

    const filter = { outcomes: new Set(), text: "" };
    const list = make("div", "cases");
    const search = make("input");
    const buttons = [];

    function isShown(row) {
        return (filter.outcomes.size === 0 || filter.outcomes.has(row.outcome)) &&
            (filter.text === "" || textOf(row).includes(filter.text.toLowerCase()));
    }

    function showList() {
        for (const button of buttons) {
            const outcome = button.dataset.outcome;
            button.setAttribute("aria-pressed", String(outcome === ""
                ? filter.outcomes.size === 0 : filter.outcomes.has(outcome)));
        }
        list.replaceChildren();
        const rows = data.rows.filter(isShown);
        data.suites.forEach((suite, index) => {
            const rowsOfSuite = rows.filter((row) => row.suite === index);
            if (data.suites.length > 1 && rowsOfSuite.length > 0)
                list.append(make("h2", "", suite.name || "(no suite)"));
            appendAll(list.appendChild(make("div")), rowsOfSuite, caseElement);
        });
        if (rows.length === 0) {
            list.append(make("p", "nothing", data.rows.length === 0
                ? "No test case ran." : "No test case fits the filter."));
        }
    }

    // The filter stands in the address, so that a view can be kept and passed on.
    function saveFilter() {
        const parameters = new URLSearchParams();
        if (filter.outcomes.size > 0)
            parameters.set("outcome", [...filter.outcomes].join(","));
        if (filter.text !== "")
            parameters.set("text", filter.text);
        history.replaceState(null, "", `#${parameters}`);
    }

    function loadFilter() {
        const parameters = new URLSearchParams(location.hash.slice(1));
        const outcomes = (parameters.get("outcome") || "").split(",");
        filter.outcomes = new Set(outcomes.filter((outcome) => labels.has(outcome)));
        filter.text = parameters.get("text") || "";
        search.value = filter.text;
        showList();
        const wanted = parameters.has("case") &&
            data.rows.find((row) => row.name === parameters.get("case"));
        if (wanted && isShown(wanted)) {
            const element = caseElement(wanted);
            element.unfold();
            // It may stand behind what the list shows at first.
            const nextMore = () => list.querySelector(":scope > div > .more");
            while (!element.isConnected && nextMore())
                nextMore().click();
            element.scrollIntoView();
        }
    }

    function filterButton(outcome, label, count) {
        const button = make("button", outcome, `${label} ${count}`);
        button.type = "button";
        button.dataset.outcome = outcome;
        button.addEventListener("click", () => {
            if (outcome === "")
                filter.outcomes.clear();
            else if (!filter.outcomes.delete(outcome))
                filter.outcomes.add(outcome);
            saveFilter();
            showList();
        });
        buttons.push(button);
        return button;
    }

    function filterElement() {
        const bar = make("div", "filter", filterButton("", "all", data.rows.length));
        for (const outcome of data.outcomes) {
            const count = data.rows.filter((row) => row.outcome === outcome.id).length;
            if (count > 0)
                bar.append(filterButton(outcome.id, outcome.label, count));
        }
        search.type = "search";
        search.placeholder = "Search names, messages and output";
        search.setAttribute("aria-label", search.placeholder);
        let timer = 0;
        search.addEventListener("input", () => {
            clearTimeout(timer);
            timer = setTimeout(() => {
                filter.text = search.value;
                saveFilter();
                showList();
            }, 150);
        });
        bar.append(search);
        return bar;
    }

    function shareElement() {
        const share = make("div", "share");
        for (const outcome of data.outcomes) {
            const count = data.rows.filter((row) => row.outcome === outcome.id).length;
            if (count > 0) {
                const part = share.appendChild(make("span", outcome.id));
                part.style.flexGrow = count;
                part.title = `${count} ${outcome.label}`;
            }
        }
        return share;
    }

    function headElement() {
        const head = make("header", "", make("h1", "", data.title),
            make("p", `verdict ${data.isGood ? "passed" : "failed"}`, data.summary));
        for (const note of data.notes)
            head.append(make("p", "verdict failed", note));
        const facts = [data.start && `Started ${data.start}`, `took ${duration(data.milliseconds)}`,
            data.results].filter(Boolean);
        head.append(make("p", "facts", facts.join(" · ")));
        for (const suite of data.suites)
            head.append(make("p", "facts position", suite.path));
        return head;
    }

    function environmentElement() {
        return foldable("entry section", [make("span", "what", "Environment")], false,
            (inside) => {
                const table = make("dl", "environment");
                for (const { name, fact } of data.environment)
                    table.append(make("dt", "", name), make("dd", "", fact));
                inside.append(table);
            });
    }

    // The cases that took longest, each with its share of the longest time.
    function slowestElement() {
        const slowest = [...data.rows].sort((a, b) => b.milliseconds - a.milliseconds)
            .slice(0, 10).filter((row) => row.outcome && row.milliseconds > 0);
        return foldable("entry section", [make("span", "what", "Slowest cases")], false,
            (inside) => {
                const table = make("div", "timeline");
                for (const row of slowest) {
                    const name = link(row.name, `#${new URLSearchParams({ case: row.name })}`);
                    const bar = make("span", "bar");
                    bar.style.width = `${100 * row.milliseconds / slowest[0].milliseconds}%`;
                    table.append(make("div", "line", make("span", "what", name),
                        make("span", "took", duration(row.milliseconds)),
                        make("span", "track", bar)));
                }
                inside.append(table);
            });
    }

    const about = make("div", "about");
    if (data.environment.length > 0)
        about.append(environmentElement());
    if (data.rows.filter((row) => row.outcome).length > 1)
        about.append(slowestElement());
    document.getElementById("report").append(
        headElement(), shareElement(), about, filterElement(), list);
    loadFilter();
    window.addEventListener("hashchange", loadFilter);
    // Whoever opens the report after a bad night wants to see the first failure.
    const first = data.rows.find((row) => data.entries[row.id].some((entry) => entry.failure));
    if (first && location.hash === "")
        caseElement(first).unfold();
})();
