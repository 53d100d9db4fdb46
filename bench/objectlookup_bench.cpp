// What looking up objects in a program of 10,000 objects costs: beside a plain loop with the same
// two comparisons inside that program, and beside a ping, the shortest request there is. What it
// costs to tell an action in the journal, beside the look-up of its object. And what a click by
// name costs in one request, beside a wait for the object and a click on it.
//
// Times are microseconds, the medians of turns that alternate, all in one run.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "base/environment.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/remotemodel.h"
#include "platform/objectmodel/valueobject.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/testresult.h"
#include "runner/applications/objecttree.h"
#include "runner/services/runner.h"

namespace {

using Tamrix::Inspector;
using Tamrix::RemoteModel;

const char* const wantedText = "Button 97.48";
constexpr int clickTimeout = 20000;

double microseconds(const std::function<bool()>& work) {
    QElapsedTimer timer;
    timer.start();
    return work() ? static_cast<double>(timer.nsecsElapsed()) / 1000 : -1;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times.empty() ? -1 : times[times.size() / 2];
}

int fail(const QString& text) {
    std::fprintf(stderr, "objectlookup_bench: %s\n", qPrintable(text));
    return 1;
}

/// What "tamrixrunner inspect" does: the tree of all objects with their names, as text.
bool inspect(RemoteModel& model) {
    const auto listing = model.listing();
    return listing && Tamrix::objectTreeText(*listing).contains(QLatin1String(wantedText));
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    Tamrix::Environment::setVariable("TAMRIX_PREFIX", TAMRIX_BENCH_PREFIX);

    Tamrix::Runner runner;
    QString error;
    if (!runner.startApplication(TAMRIX_BENCH_TARGET, {}, -1, -1, &error))
        return fail(error);
    auto* const model = dynamic_cast<RemoteModel*>(Inspector::self()->model());
    const QString name =
        QStringLiteral("{type='QPushButton' text='%1'}").arg(QLatin1String(wantedText));
    const auto target = runner.waitForObjectExists("{type='LookupTarget'}", true, 20000);
    if (!model || !target || !Inspector::self()->findObject(name))
        return fail(Inspector::self()->lastError());

    const auto call = [&](const char* method, const Tamrix::ObjectList& arguments) {
        const auto methods = target->objectClass()->methodsByName(method);
        if (methods.isEmpty())
            return -1.0;
        const auto result = methods.front()->invoke(target, arguments);
        return result ? (*result)->toVariant().toDouble() : -1.0;
    };
    const int objects = static_cast<int>(call("objectCount", {}));

    std::vector<double> pings;
    std::vector<double> lookUps;
    std::vector<double> loops;
    std::vector<double> inspections;
    std::vector<double> actions;
    std::vector<double> clicks;
    std::vector<double> twoStepClicks;
    const QTemporaryDir folder;
    Tamrix::JournalReport journal(folder.filePath("journal"));
    Tamrix::TestResult result(&journal);
    for (int turn = 0; turn < 11; ++turn) {
        for (int each = 0; each < 100; ++each) {
            pings.push_back(
                microseconds([&] { return model->connection().ping(5000).has_value(); }));
            lookUps.push_back(
                microseconds([&] { return bool(Inspector::self()->findObject(name)); }));
            actions.push_back(microseconds([&] {
                result.addAction("waitForObject", name, 1, false, {"/suite/tst/test.py", 7});
                return journal.errorText().isEmpty();
            }));
        }
        loops.push_back(call("plainLoop", {Inspector::self()->createObject("QPushButton"),
                                           Inspector::self()->createObject(wantedText)}));
        inspections.push_back(microseconds([&] { return inspect(*model); }));
    }

    // Clicks come last: behind one, a program has its windows to paint, which the next request
    // pays.
    const auto click = [](auto&& clickOnce) {
        return microseconds([&] {
            const auto clicked = clickOnce();
            return clicked && clicked->has_value();
        });
    };
    for (int each = 0; each < 55; ++each) {
        clicks.push_back(
            click([&] { return runner.callWithName(name, "click", {}, clickTimeout); }));
        // What a runner does that knows no better.
        twoStepClicks.push_back(click(
            [&] { return runner.RunnerInterface::callWithName(name, "click", {}, clickTimeout); }));
    }

    const double ping = median(pings);
    const double loop = median(loops);
    const double lookUp = median(lookUps);
    const double inspection = median(inspections);
    std::printf("%d objects, times in microseconds\n", objects);
    std::printf("  ping                          %10.1f\n", ping);
    std::printf("  plain loop in the program     %10.1f\n", loop);
    std::printf(
        "  findObject by type and text   %10.1f   (%.2f plain loops behind a ping; at most "
        "3)\n",
        lookUp, (lookUp - ping) / loop);
    std::printf(
        "  inspect                       %10.1f   (%.1f pings for 1,000 objects; at most "
        "40)\n",
        inspection, inspection / ping / objects * 1000);
    const double action = median(actions);
    std::printf("  action in the journal         %10.1f   (%.1f %% of findObject; at most 5)\n",
                action, 100 * action / lookUp);
    const double clickByName = median(clicks);
    std::printf("  click by name                 %10.1f   (%.2f of wait and click, %.1f)\n",
                clickByName, clickByName / median(twoStepClicks), median(twoStepClicks));
    return 0;
}
