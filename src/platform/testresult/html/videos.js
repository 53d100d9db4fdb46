// Videos, with a mark at each failure that happened meanwhile.

// A person wants to see what led to a failure: the video goes on from so many seconds before it.
const lead = 1;

// Each video's element and player, by its entry.
const shownVideos = new Map();

// Which video shows a failure, by the failure's entry.
const videoOf = new Map();
for (const entries of data.entries) {
    const videos = entries.filter((entry) => entry.kind === "video" && !entry.file.problem);
    for (const failure of entries.filter((entry) => entry.failure)) {
        const video = videos.find(({ at, until }) =>
            at <= failure.at && (until === undefined || failure.at <= until));
        if (video)
            videoOf.set(failure, video);
    }
}

function secondsInVideo(failure, video) {
    return (failure.at - video.at) / 1000;
}

function playFrom(video, seconds) {
    const { element, player } = shownVideos.get(video);
    element.unfold();
    player.scrollIntoView({ block: "nearest" });
    player.currentTime = Math.max(0, seconds - lead);
    // A browser may want a click on the video itself first.
    player.play().catch(() => {});
}

function playerElement(file) {
    const player = make("video");
    if (file.path)
        player.src = file.path;
    player.controls = true;
    player.preload = "metadata";
    player.addEventListener("error", () => player.replaceWith(
        make("p", "problem", `The video '${file.path}' can't be played here.`)));
    return player;
}

// A strip as long as the video, with a mark for each failure.
function marksElement(entry, player, failures) {
    const marks = make("div", "marks");
    const place = () => {
        const length = Number.isFinite(player.duration) ? player.duration
            : Math.max(...failures.map((failure) => secondsInVideo(failure, entry)), 1);
        marks.replaceChildren(...failures.map((failure) => {
            const seconds = secondsInVideo(failure, entry);
            const mark = make("button", "mark");
            mark.type = "button";
            mark.style.left = `${Math.min(100, 100 * seconds / length).toFixed(2)}%`;
            mark.title = `${duration(1000 * seconds)}  ${failure.label}: ${failure.message}`;
            mark.setAttribute("aria-label", mark.title);
            mark.addEventListener("click", () => playFrom(entry, seconds));
            return mark;
        }));
    };
    player.addEventListener("durationchange", place);
    place();
    return marks;
}

function videoElement(entry, row, isOpen) {
    const failures = data.entries[row.id].filter((failure) => videoOf.get(failure) === entry);
    const player = playerElement(entry.file);
    const summary = [make("span", "badge", entry.label),
        make("span", "what", entry.message, make("span", "note", `: ${entry.file.name}`)),
        timeOf(entry)];
    const element = foldable("entry", summary, isOpen || entry.file.problem, (inside) => {
        if (entry.file.problem) {
            inside.append(make("p", "problem", entry.file.problem));
            return;
        }
        inside.append(make("figure", "video", player,
            failures.length > 0 ? marksElement(entry, player, failures) : "",
            make("figcaption", "", link(entry.file.name, entry.file.path))));
    });
    shownVideos.set(entry, { element, player });
    return element;
}

// Leads from a failure to its moment in the video.
function toVideoElement(failure) {
    const video = videoOf.get(failure);
    if (!video)
        return "";
    const seconds = secondsInVideo(failure, video);
    const button = make("button", "copy", `Show in the video at ${duration(1000 * seconds)}`);
    button.type = "button";
    button.addEventListener("click", () => playFrom(video, seconds));
    return button;
}
