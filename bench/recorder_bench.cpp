// What a recording costs the program that is recorded, in microseconds for each event that comes to
// a native window: the mouse that moves, keys in a field, clicks. Beside the same events without a
// recording, in one run, for programs of some hundred and of ten thousand objects.

#include <QGuiApplication>
#include <QThread>
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

constexpr int turns = 7;
/// So seldom is asked whether it is measured, in ms: it should not be disturbed.
constexpr int pollInterval = 100;

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
    };
    for (const Kind& kind : {Kind{"move", 2000}, Kind{"key", 200}, Kind{"click", 50}}) {
        std::vector<double> plain;
        std::vector<double> recorded;
        for (int turn = 0; turn < turns; ++turn) {
            for (const bool isRecorded : {false, true}) {
                const Tamrix::Outcome<> set =
                    model->record(Tamrix::Wire::Record{isRecorded, {}, false});
                if (!set)
                    return set.error().text;
                call("measureEvents", {Inspector::self()->createObject(kind.name),
                                       Inspector::self()->createObject(kind.count)});
                double time = -1;
                while (time < 0) {
                    QThread::msleep(pollInterval);
                    time = call("measuredTime", {});
                }
                (isRecorded ? recorded : plain).push_back(time);
                model->takeObservations();
            }
        }
        const double without = median(plain);
        const double with = median(recorded);
        std::printf("%6d objects, %-6s %8.1f us without, %8.1f us recorded: %8.1f us an event\n",
                    objects, kind.name, without, with, with - without);
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    Tamrix::Environment::setVariable("TAMRIX_PREFIX", TAMRIX_BENCH_PREFIX);
    for (const int groups : {4, 100}) {
        const QString error = measure(groups);
        if (!error.isEmpty())
            return fail(error);
    }
    return 0;
}
