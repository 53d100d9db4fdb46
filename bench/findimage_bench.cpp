// What findImage() costs in a script, on a program that fills a screen of 1920x1080: beside the
// screenshot that it needs, from the screen to the script, and the search itself in the same
// picture. And what such a screenshot costs beside its grab, in copies of its pixels in memory.
// Both for a program with the agent, and for the same program by what its display shows.
//
// A run of tamrixrunner measures in a script, in turns; this program measures the search.
// Times are milliseconds, the least of their turns: what more it took was other programs' doing.

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>

#include "desktoppicture.h"
#include "vision/search/imagelookup.h"

namespace {

using namespace Tamrix;

constexpr int turns = 40;
constexpr QSize screenSize(1920, 1080);
constexpr QRect needlePlace(700, 420, 64, 64);

/// %1 the program's name, %2 the turns, %3 where the times go, %4 whether there is an agent. The
/// pause is that with which each search begins.
const char script[] = R"(
import json, time

pause = 200

def milliseconds(work):
    start = time.perf_counter_ns()
    result = work()
    return (time.perf_counter_ns() - start) / 1e6, result

def main():
    startApplication("%1")
    snooze(1)
    best = {}
    def note(name, value):
        best[name] = min(value, best.get(name, value))
    target = findObject("{name='target'}") if %4 else None
    for turn in range(%2):
        note("findImage", milliseconds(lambda: findImage("needle"))[0] - pause)
        note("tolerant", milliseconds(lambda: findImage("needle", {"tolerant": True}))[0] - pause)
        # A pause like that of the searches: caches are as cold.
        time.sleep(pause / 1000)
        note("screenshot", milliseconds(grabDesktopScreenshot)[0])
    for turn in range(5 * %2 if target is not None else 0):
        note("row", milliseconds(grabDesktopScreenshot)[0])
        note("grab", target.grabTime() / 1000)
        note("copy", target.copyTime() / 1000)
    with open("%3", "w") as file:
        json.dump(best, file)
)";

[[noreturn]] void fail(const QString& text) {
    std::fprintf(stderr, "findimage_bench: %s\n", qUtf8Printable(text));
    std::exit(1);
}

void write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        fail(file.errorString());
}

/// The times that a run measures, by name.
QJsonObject run(const QString& folder, const QString& display, const QImage& needle,
                bool hasAgent) {
    const QString suite = folder + (hasAgent ? "/agent" : "/display");
    const QString times = suite + "/times.json";
    write(suite + "/finds/test.py", QString::fromLatin1(script)
                                        .arg(QStringLiteral("picture"), QString::number(turns),
                                             times, hasAgent ? "True" : "False")
                                        .toUtf8());
    write(
        suite + "/config.xml",
        QByteArray("<suite><applications><application name=\"picture\" path=\"" TAMRIX_BENCH_TARGET
                   "\"") +
            (hasAgent ? "" : " hook=\"none\"") + "/></applications></suite>\n");
    QDir().mkpath(suite + "/finds/searchImages");
    if (!needle.save(suite + "/finds/searchImages/needle.png"))
        fail("the needle can't be written");
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral(TAMRIX_BENCH_PREFIX "/bin/tamrixrunner"),
                  {"run", suite, "--aut-display", display, "--result-dir", folder + "/results"});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail("the run failed:\n" + QString::fromUtf8(process.readAllStandardOutput()));
    QFile file(times);
    if (!file.open(QIODevice::ReadOnly))
        fail(file.errorString());
    return QJsonDocument::fromJson(file.readAll()).object();
}

double searchTime(const QImage& haystack, const QImage& needle, bool isTolerant) {
    const std::unique_ptr<Vision::ImageLookupImplementation> engine(
        Vision::ImageLookupImplementation::get());
    Vision::ImageLookupOptions options;
    options.setTolerant(isTolerant);
    double least = std::numeric_limits<double>::max();
    for (int turn = 0; turn < turns; ++turn) {
        QElapsedTimer timer;
        timer.start();
        const std::unique_ptr<Vision::ImageLookupImplementation::Cache> cache(
            engine->newCache({needle}, true));
        const QRect place = engine->findMatch(haystack, Vision::SearchRegion(haystack.rect()),
                                              cache.get(), options, 1);
        least = std::min(least, static_cast<double>(timer.nsecsElapsed()) / 1e6);
        if (!place.isValid())
            fail("the needle was not found in the picture that it was cut from");
    }
    return least;
}

/// Starts an X display of the size, and returns its name.
QString startDisplay(QProcess& server) {
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"), {"-displayfd", "1", "-screen", "0",
                                          QStringLiteral("%1x%2x24")
                                              .arg(QString::number(screenSize.width()),
                                                   QString::number(screenSize.height())),
                                          "-nolisten", "tcp"});
    QByteArray line;
    while (!line.endsWith('\n') && server.waitForReadyRead(20000))
        line += server.readAllStandardOutput();
    if (!line.endsWith('\n'))
        fail("no X display");
    return QLatin1Char(':') + QString::fromLatin1(line.trimmed());
}

void print(const char* name, double time, double screenshot, double search) {
    std::printf("  %-28s %6.2f ms, %.2f times screenshot and search, %.2f ms (aim: at most 1.5)\n",
                name, time, time / (screenshot + search), screenshot + search);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QProcess server;
    const QString display = startDisplay(server);
    const QTemporaryDir folder;
    const QImage picture = drawDesktopPicture(screenSize);
    const QImage needle = picture.copy(needlePlace);
    const double exact = searchTime(picture, needle, false);
    const double tolerant = searchTime(picture, needle, true);
    std::printf("the search alone: %.2f ms exactly, %.2f ms with tolerance\n", exact, tolerant);
    for (const bool hasAgent : {true, false}) {
        const QJsonObject times = run(folder.path(), display, needle, hasAgent);
        const auto time = [&](const char* name) {
            return times.value(QLatin1String(name)).toDouble();
        };
        const double screenshot = time("screenshot");
        std::printf("%s, 1920x1080\n",
                    hasAgent ? "a program with the agent" : "the same by its display");
        print("findImage", time("findImage"), screenshot, exact);
        print("findImage, tolerant", time("tolerant"), screenshot, tolerant);
        std::printf("  a screenshot for the script  %6.2f ms\n", screenshot);
        if (hasAgent)
            std::printf(
                "  one after another            %6.2f ms, their grab %.2f ms, a copy of the pixels "
                "%.2f ms: %.2f copies beside the grab (aim: at most 2)\n",
                time("row"), time("grab"), time("copy"),
                (time("row") - time("grab")) / time("copy"));
    }
    server.terminate();
    server.waitForFinished();
    return 0;
}
