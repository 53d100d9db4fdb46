// What names cost that are kept in a script of 5,000: the first look-up, which runs the script,
// beside a start of python3 and beside python3 on the same script; and later ones, of which each
// looks at the time stamps of the scripts first.
//
// Medians of turns that alternate, all in one run.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "base/environment.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace {

using namespace Tamrix;

constexpr int nameCount = 5000;
constexpr int turns = 9;
constexpr int lookUps = 20000;
const char* const python = "/usr/bin/python3";

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double milliseconds(const std::function<bool()>& work) {
    QElapsedTimer timer;
    timer.start();
    return work() ? static_cast<double>(timer.nsecsElapsed()) / 1e6 : -1;
}

/// Microseconds for one of many.
double eachOf(int count, const std::function<bool(int)>& work) {
    QElapsedTimer timer;
    timer.start();
    for (int number = 0; number < count; ++number) {
        if (!work(number))
            return -1;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e3 / count;
}

bool writeScript(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray script = "# Names of a large program\nmain_window = {\"type\": \"MainWindow\"}\n";
    for (int number = 1; number < nameCount; ++number) {
        const QByteArray text = QByteArray::number(number);
        // Every tenth is a box that those behind it stand in.
        const bool isBox = number % 10 == 1;
        const QByteArray box = QByteArray::number(number - (number + 9) % 10);
        script += isBox ? "box_" + text + " = {\"type\": \"QGroupBox\", \"title\": \"Box " + text +
                              "\", \"window\": main_window}\n"
                        : "button_" + text + " = {\"type\": \"QPushButton\", \"text\": \"Button " +
                              text + "\", \"container\": box_" + box + "}\n";
    }
    return file.write(script) == script.size();
}

int fail(const QString& text) {
    std::fprintf(stderr, "objectmap_bench: %s\n", qPrintable(text));
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Environment::setVariable(prefixVariable, TAMRIX_BENCH_PREFIX);
    const QTemporaryDir folder;
    const QString path = folder.filePath("names.py");
    if (!writeScript(path))
        return fail("the script can't be written");

    std::vector<double> starts;
    std::vector<double> scripts;
    std::vector<double> first;
    std::unique_ptr<ObjectMap> map;
    for (int turn = 0; turn < turns; ++turn) {
        starts.push_back(milliseconds([] { return QProcess::execute(python, {"-c", ""}) == 0; }));
        scripts.push_back(milliseconds([&] { return QProcess::execute(python, {path}) == 0; }));
        first.push_back(milliseconds([&] {
            auto opened = openObjectMap(path);
            if (!opened)
                return false;
            map = *std::move(opened);
            return map->resolve(":button_4999").has_value();
        }));
        if (starts.back() < 0 || scripts.back() < 0 || first.back() < 0)
            return fail("python3 or the map does not work");
    }
    const double start = median(starts);
    std::printf("%d names, milliseconds\n", nameCount);
    std::printf("  python3 that does nothing   %8.1f\n", start);
    std::printf("  python3 with the script     %8.1f\n", median(scripts));
    std::printf("  first look-up               %8.1f  (%+.1f to the first; aim +100)\n",
                median(first), median(first) - start);

    const auto* const script = dynamic_cast<ScriptedObjectMap*>(map.get());
    const QStringList patterns{"*.js", "*.pl", "*.pm", "*.py", "*.rb", "*.tcl"};
    std::vector<double> stamps;
    std::vector<double> later;
    std::vector<double> reverse;
    const QString realName = map->resolve(":button_4999")->qualifiedName();
    for (int turn = 0; turn < turns; ++turn) {
        stamps.push_back(eachOf(
            lookUps, [&](int) { return script->lastScriptModification(patterns).isValid(); }));
        later.push_back(eachOf(lookUps, [&](int number) {
            const int wanted = number % 499 * 10 + 2;
            return map->resolve(QString(":button_%1").arg(wanted)).has_value();
        }));
        reverse.push_back(
            eachOf(lookUps, [&](int) { return !map->symbolicName(realName).isEmpty(); }));
    }
    std::printf("microseconds\n");
    std::printf("  the time stamps alone       %8.1f\n", median(stamps));
    std::printf("  a later look-up             %8.1f  (%+.1f; aim +20)\n", median(later),
                median(later) - median(stamps));
    std::printf("  symbolic name of a real one %8.1f  (%+.1f; aim +20)\n", median(reverse),
                median(reverse) - median(stamps));
    return 0;
}
