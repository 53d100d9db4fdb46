// The page: the list of cases with its filter, and what stands above it.

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
