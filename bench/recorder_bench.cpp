// What a recording costs the program that is recorded, in microseconds for which the thread of its
// windows is busy, for each event that comes to a native window: the mouse that moves, keys in a
// field, clicks on what has a name of its own and on what has none; at the pace of a person and as
// fast as they come. Beside the same events without a recording, in one run, for programs of some
// hundred up to ten thousand objects.

#include <QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/environment.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/remotemodel.h"
#include "runner/services/runner.h"

namespace {

using Tamrix::Inspector;
using Tamrix::RemoteModel;

constexpr int turns = 5;
/// So seldom is asked whether it is measured, in s: it should not be disturbed.
constexpr double pollInterval = 0.25;
/// A person takes longer, in ms, from the last move of the mouse to the press.
constexpr int pauseOfPerson = 60;

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

int fail(const QString& text) {
    std::fprintf(stderr, "recorder_bench: %s\n", qPrintable(text));
    return 1;
}

/// Prints a line for each kind of event; what went wrong, empty for nothing.
QString measure(int groups) {
    Tamrix::Runner runner;
    QString error;
    if (!runner.startApplication(QStringLiteral(TAMRIX_BENCH_TARGET " %1").arg(groups), {}, -1, -1,
                                 &error))
        return error;
    auto* const model = dynamic_cast<RemoteModel*>(Inspector::self()->model());
    const auto target = runner.waitForObjectExists("{type='LookupTarget'}", true, 20000);
    if (!model || !target)
        return Inspector::self()->lastError();
    const auto call = [&](const char* method, const Tamrix::ObjectList& arguments) {
        const auto methods = target->objectClass()->methodsByName(method);
        const auto result = methods.isEmpty() ? Tamrix::SharedPtr<Tamrix::Object>()
                                              : methods.front()
                                                    ->invoke(target, arguments)
                                                    .value_or(Tamrix::SharedPtr<Tamrix::Object>());
        return result ? result->toVariant().toDouble() : -1.0;
    };
    const int objects = static_cast<int>(call("objectCount", {}));
    struct Kind {
        const char* name;
        int count;
        int pause;
    };
    constexpr Kind kinds[] = {{"move", 2000, 0},
                              {"key", 20, pauseOfPerson},
                              {"field", 10, pauseOfPerson},
                              {"button", 10, pauseOfPerson},
                              {"twin", 10, pauseOfPerson},
                              {"key", 100, 0},
                              {"field", 50, 0},
                              {"button", 50, 0},
                              {"twin", 50, 0}};
    for (const Kind& kind : kinds) {
        std::vector<double> plain;
        std::vector<double> recorded;
        for (int turn = 0; turn < turns; ++turn) {
            for (const bool isRecorded : {false, true}) {
                const Tamrix::Outcome<> set =
                    model->record(Tamrix::Wire::Record{isRecorded, {}, false});
                if (!set)
                    return set.error().text;
                call("measureEvents", {Inspector::self()->createObject(kind.name),
                                       Inspector::self()->createObject(kind.count),
                                       Inspector::self()->createObject(kind.pause)});
                double time = -1;
                while (time < 0) {
                    runner.snooze(pollInterval);
                    if (!model->isOpen())
                        return QStringLiteral("The program has ended");
                    time = call("measuredTime", {});
                }
                (isRecorded ? recorded : plain).push_back(time);
                model->takeObservations();
            }
        }
        const double without = median(plain);
        const double with = median(recorded);
        std::printf("%6d objects, %-6s %s %8.1f us without, %8.1f us recorded: %8.1f us an event\n",
                    objects, kind.name, kind.pause > 0 ? "person" : "burst ", without, with,
                    with - without);
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    Tamrix::Environment::setVariable("TAMRIX_PREFIX", TAMRIX_BENCH_PREFIX);
    for (const int groups : {3, 20, 100}) {
        const QString error = measure(groups);
        if (!error.isEmpty())
            return fail(error);
    }
    return 0;
}
