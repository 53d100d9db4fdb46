// What the trace of a test costs it, on a display of 1280x1024: suites that drive a calculator, and
// a list that fills the screen and shows another page of it at each step, with and without a trace,
// in turns; what it takes on disk; what is left of a case that passed when only failed ones are
// kept; and how long a browser takes until the page of a trace of a thousand steps can be used.

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int rounds = 3;
constexpr int clicks = 1000;
constexpr int pages = 100;
/// As many files as the list shows in all.
constexpr int files = 6000;
constexpr int browserPatience = 60000;
const char runner[] = TAMRIX_BENCH_PREFIX "/bin/tamrixrunner";

/// Each click changes what is seen. %1 is how often five of them are made.
const char clickScript[] = R"(
def main():
    startApplication("/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/calculator")
    for number in range(%1):
        for key in "7", "+", "5", "=", "Clear All":
            click({"type": "Button", "text": key})
)";

/// %1 is a folder, %2 how often its list moves by a page.
const char pageScript[] = R"(
def main():
    startApplication("/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/itemviews/dirview/dirview "
                     "-qwindowgeometry 1280x1024+0+0 '%1'")
    waitForObject({"type": "QTreeViewItem", "row": 40, "column": 0})
    snooze(5) # until all files are in the list
    for number in range(%2):
        press({"type": "QTreeView"}, "PgDown")
)";

/// Tells when all steps are listed, one is chosen, and its picture and its objects are shown; then
/// how long it takes to go through the first steps one by one.
const char usableScript[] = R"(<script>
const usable = () => current && current.outcome && page("steps").querySelector(".chosen") &&
    page("steps").children.length === current.steps.length &&
    page("panel").querySelector(".object") && tileImages.size > 0 &&
    [...tileImages.values()].every((image) => image.complete && image.naturalWidth > 0);
const look = () => {
    if (!usable()) {
        setTimeout(look, 5);
        return;
    }
    const opened = performance.now();
    for (let step = 0; step < 100; ++step)
        choose(step);
    console.log(`usable ${opened} steps ${current.steps.length} move ${(performance.now() - opened) / 100}.`);
};
look();
</script></body>)";

[[noreturn]] void fail(const QByteArray& text) {
    std::fprintf(stderr, "trace_bench: %s\n", text.constData());
    std::exit(1);
}

QByteArray read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail("can't read " + path.toLocal8Bit());
    return file.readAll();
}

void write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        fail("can't write " + path.toLocal8Bit());
}

/// Milliseconds of a run that has to end well.
double run(const QString& suite, const QString& results, const QString& mode) {
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(QString::fromLatin1(runner),
                  {"run", suite, "--aut-display", "auto", "--no-console", "--result-dir", results,
                   "--trace", mode});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail("the run failed: " + suite.toLocal8Bit() + '\n' + process.readAllStandardOutput());
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

qint64 bytesIn(const QString& folder) {
    qint64 bytes = 0;
    for (QDirIterator file(folder, QDir::Files, QDirIterator::Subdirectories); file.hasNext();) {
        file.next();
        bytes += file.fileInfo().size();
    }
    return bytes;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Runs a case of so many steps and tells what their trace costs.
void measure(const char* what, const QString& suite, const QString& results, int steps) {
    std::vector<double> without;
    std::vector<double> with;
    for (int round = 0; round < rounds; ++round) {
        without.push_back(run(suite, results + "-plain", "off"));
        with.push_back(run(suite, results, "on"));
    }
    std::printf("%d %s without a trace  %8.0f ms\n", steps, what, median(without));
    std::printf("the same with a trace  %8.0f ms, %.1f ms more a step (aim: at most 30)\n",
                median(with), (median(with) - median(without)) / steps);
    std::printf("on disk                %8.1f kB a step (aim: at most 25)\n",
                static_cast<double>(bytesIn(results + "/trace")) / 1000 / steps);
}

/// What a case that passed leaves when only failed ones are kept.
void measureFailedOnly(const QString& suite, const QString& results) {
    run(suite, results, "failed");
    const QDir trace(results + "/trace");
    const int cases = trace.entryList({"case-*"}, QDir::Dirs).size();
    const int tiles = QDir(trace.filePath("tiles")).entryList(QDir::Files).size();
    std::printf("of a case that passed, --trace failed keeps %d folders and %d pictures (aim: 0)\n",
                cases, tiles);
}

struct Opening {
    /// Since the browser was told to load the page.
    double usable = 0;
    /// Of one step in the page.
    double move = 0;
};

Opening open(const QString& browser, const QString& page, const QString& profile) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(browser,
                  {"--headless", "--no-sandbox", "--disable-gpu", "--enable-logging=stderr",
                   "--user-data-dir=" + profile, "--window-size=1600,1000",
                   // Lets it stay.
                   "--remote-debugging-port=0", "file://" + page});
    const QRegularExpression told("usable ([0-9.]+) steps ([0-9]+) move ([0-9.]+)\\.");
    QElapsedTimer timer;
    timer.start();
    QString output;
    QRegularExpressionMatch match;
    while (!match.hasMatch() && timer.elapsed() < browserPatience &&
           process.waitForReadyRead(browserPatience)) {
        output += QString::fromUtf8(process.readAll());
        match = told.match(output);
    }
    process.kill();
    process.waitForFinished();
    if (!match.hasMatch() || match.captured(2).toInt() < clicks)
        fail("the page does not become usable: " + output.right(2000).toLocal8Bit());
    return {match.captured(1).toDouble(), match.captured(3).toDouble()};
}

void measurePage(const QString& trace, const QString& profile) {
    const QString browser = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (browser.isEmpty()) {
        std::printf("the page in a browser is not measured: there is no chromium\n");
        return;
    }
    const QString page = trace + "/usable.html";
    write(page, read(trace + "/index.html").replace("</body>", usableScript));
    std::vector<double> usable;
    std::vector<double> move;
    for (int round = 0; round < rounds; ++round) {
        const Opening opening = open(browser, page, profile);
        usable.push_back(opening.usable);
        move.push_back(opening.move);
    }
    std::printf(
        "the page in Chromium   %8.0f ms until it can be used (aim: at most 2000), %.1f ms "
        "a step\n",
        median(usable), median(move));
}

}  // namespace

int main() {
    const QTemporaryDir folder;
    const QString clickSuite = folder.filePath("clicks");
    const QString pageSuite = folder.filePath("pages");
    const QString list = folder.filePath("list");
    for (const QString& each : {clickSuite + "/case", pageSuite + "/case", list})
        QDir().mkpath(each);
    write(clickSuite + "/case/test.py",
          QString::fromLatin1(clickScript).arg(QString::number(clicks / 5)).toUtf8());
    write(pageSuite + "/case/test.py",
          QString::fromLatin1(pageScript).arg(list, QString::number(pages)).toUtf8());
    for (int number = 0; number < files; ++number)
        write(QStringLiteral("%1/file %2.txt").arg(list, QString::number(number)), {});

    const QString results = folder.filePath("results");
    measure("clicks", clickSuite, results, clicks);
    measurePage(results + "/trace", folder.filePath("profile"));
    measure("pages of a list", pageSuite, results + "-pages", pages);
    if (QDir(results + "-pages/trace/tiles").count() < static_cast<uint>(pages) * 5)
        fail("the list did not move");
    measureFailedOnly(clickSuite, results + "-failed");
    return 0;
}
