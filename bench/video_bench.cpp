// What the video of a test costs it: a suite that drives a program as fast as it can, with and
// without, in turns. Each run has a display of its own.

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int defaultRounds = 7;
const char runner[] = TAMRIX_BENCH_PREFIX "/bin/tamrixrunner";

/// A case of some seconds: clicks and looks at a calculator, each of which changes what is seen.
const char script[] = R"(
def main():
    startApplication("calculator")
    for number in range(60):
        for key in "7", "+", "5", "=":
            click({"type": "Button", "text": key})
        test.verify(findObject("{type='QLineEdit'}").text == "12")
        click({"type": "Button", "text": "Clear All"})
)";

/// Milliseconds of a run.
qint64 run(const QString& suite, const QString& video, const QString& results) {
    QProcess process;
    QElapsedTimer timer;
    timer.start();
    process.start(QString::fromLatin1(runner), {"run", suite, "--aut-display", "auto", "--video",
                                                video, "--no-console", "--result-dir", results});
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        std::fprintf(stderr, "%s", process.readAllStandardError().constData());
        std::fprintf(stderr, "the run failed\n");
        std::exit(1);
    }
    return timer.elapsed();
}

double median(std::vector<qint64> values) {
    std::sort(values.begin(), values.end());
    return static_cast<double>(values.at(values.size() / 2));
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : defaultRounds;
    const QTemporaryDir folder;
    const QString suite = folder.filePath("suite");
    QDir().mkpath(suite + "/clicks");
    QFile file(suite + "/clicks/test.py");
    if (!QFile::copy(TAMRIX_BENCH_SUITE "/config.xml", suite + "/config.xml") ||
        !file.open(QIODevice::WriteOnly) || file.write(script) < 0)
        return 1;
    file.close();

    std::vector<qint64> without;
    std::vector<qint64> with;
    for (int round = 0; round < rounds; ++round) {
        without.push_back(run(suite, "off", folder.filePath("off")));
        with.push_back(run(suite, "on", folder.filePath("on")));
    }
    std::printf("without a video  %6.0f ms\n", median(without));
    std::printf("with a video     %6.0f ms   %.3f of that (aim: at most 1.1)\n", median(with),
                median(with) / median(without));
    return 0;
}
