// What the trace of a test costs it: a suite that drives a calculator on a display of 1280x1024,
// with and without a trace, in turns; what it takes on disk; and how long a browser takes to open
// one of a thousand steps, beside an empty page.

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int rounds = 3;
constexpr int steps = 1000;
const char runner[] = TAMRIX_BENCH_PREFIX "/bin/tamrixrunner";

/// Each click changes what is seen. %1 is how often five of them are made.
const char script[] = R"(
def main():
    startApplication("/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/calculator")
    for number in range(%1):
        for key in "7", "+", "5", "=", "Clear All":
            click({"type": "Button", "text": key})
)";

[[noreturn]] void fail(const QByteArray& text) {
    std::fprintf(stderr, "trace_bench: %s\n", text.constData());
    std::exit(1);
}

void write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        fail("can't write " + path.toLocal8Bit());
}

/// Milliseconds of a program that has to end well.
double timeOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail("failed: " + program.toLocal8Bit() + '\n' + process.readAllStandardOutput());
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double run(const QString& suite, const QString& results, const QString& mode) {
    return timeOf(QString::fromLatin1(runner),
                  {"run", suite, "--aut-display", "auto", "--no-console", "--result-dir", results,
                   "--trace", mode});
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

double openTime(const QString& browser, const QString& page) {
    return timeOf(browser, {"--headless", "--no-sandbox", "--disable-gpu", "--dump-dom",
                            "--virtual-time-budget=20000", "file://" + page});
}

}  // namespace

int main() {
    const QTemporaryDir folder;
    const QString suite = folder.filePath("suite");
    QDir().mkpath(suite + "/clicks");
    write(suite + "/clicks/test.py",
          QString::fromLatin1(script).arg(QString::number(steps / 5)).toUtf8());
    write(folder.filePath("empty.html"), "<p>empty");

    std::vector<double> without;
    std::vector<double> with;
    const QString results = folder.filePath("traced");
    for (int round = 0; round < rounds; ++round) {
        without.push_back(run(suite, folder.filePath("plain"), "off"));
        with.push_back(run(suite, results, "on"));
    }
    const double bytes = static_cast<double>(bytesIn(results + "/trace"));
    std::printf("%d steps without a trace  %8.0f ms\n", steps, median(without));
    std::printf("the same with a trace      %8.0f ms, %.1f ms more a step (aim: at most 30)\n",
                median(with), (median(with) - median(without)) / steps);
    std::printf("on disk                    %8.1f kB a step (aim: at most 25)\n",
                bytes / 1000 / steps);

    const QString browser = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (browser.isEmpty())
        return 0;
    std::vector<double> empty;
    std::vector<double> page;
    for (int round = 0; round < rounds; ++round) {
        empty.push_back(openTime(browser, folder.filePath("empty.html")));
        page.push_back(openTime(browser, results + "/trace/index.html"));
    }
    std::printf(
        "the page in Chromium       %8.0f ms behind those of an empty page, %.0f ms (aim: at "
        "most 2000)\n",
        median(page) - median(empty), median(empty));
    return 0;
}
