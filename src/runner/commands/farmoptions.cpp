#include "runner/commands/farmoptions.h"

#include <QDir>
#include <QRandomGenerator>
#include <thread>

#include "runner/commands/caserun.h"

namespace Tamrix {

namespace {

constexpr int mostJobs = 1000;
constexpr int mostRuns = 1000000;

using Reader = OptionReader<CaseRunSettings>;

/// A whole number within limits.
Outcome<int> readNumber(const char* option, const QString& text, int least, int most) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= least && number <= most)
        return number;
    return wrongUsage(
        QStringLiteral("--%1 takes a number from %2 to %3, not '%4'")
            .arg(QLatin1String(option), QString::number(least), QString::number(most), text));
}

Reader numberTo(const char* option, int FarmSettings::*member, int least, int most) {
    return [=](const QStringList& values, CaseRunSettings& settings) -> Outcome<> {
        const Outcome<int> number = readNumber(option, values.constLast(), least, most);
        if (!number)
            return fail(number.error());
        settings.farm.*member = *number;
        return {};
    };
}

Outcome<> readJobs(const QStringList& values, CaseRunSettings& settings) {
    if (values.constLast() == QLatin1String("auto")) {
        settings.farm.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
        return {};
    }
    bool isNumber = false;
    settings.farm.jobs = values.constLast().toInt(&isNumber);
    if (isNumber && settings.farm.jobs >= 1 && settings.farm.jobs <= mostJobs)
        return {};
    return wrongUsage(QStringLiteral("--jobs takes auto or a number from 1 to %1, not '%2'")
                          .arg(QString::number(mostJobs), values.constLast()));
}

Outcome<> readMaxFailures(const QStringList& values, CaseRunSettings& settings) {
    const Outcome<int> number = readNumber("max-failures", values.constLast(), 1, mostRuns);
    if (!number)
        return fail(number.error());
    settings.maxFailures = *number;
    return {};
}

/// "suite", "longest", "random" or "random:SEED".
Outcome<> readOrder(const QStringList& values, CaseRunSettings& settings) {
    const QString& text = values.constLast();
    const QString kind = text.section(QLatin1Char(':'), 0, 0);
    OrderWish wish;
    bool isRight = kind == text;
    if (kind == QLatin1String("random")) {
        wish.kind = OrderWish::Kind::Random;
        wish.seed = QRandomGenerator::system()->generate();
        if (kind != text)
            wish.seed = text.section(QLatin1Char(':'), 1).toUInt(&isRight);
    } else if (kind == QLatin1String("longest")) {
        wish.kind = OrderWish::Kind::LongestFirst;
    } else {
        isRight = text == QLatin1String("suite");
    }
    if (!isRight) {
        return wrongUsage(
            QStringLiteral("--order takes suite, longest, random or random:SEED, not '%1'")
                .arg(text));
    }
    settings.farm.order = wish;
    return {};
}

Outcome<> readHistory(const QStringList& values, CaseRunSettings& settings) {
    if (values.constLast().isEmpty())
        return wrongUsage(QStringLiteral("--history needs a folder"));
    settings.farm.history = QDir::cleanPath(QDir::current().absoluteFilePath(values.constLast()));
    return {};
}

Outcome<> readHome(const QStringList& values, CaseRunSettings& settings) {
    settings.farm.home = values.constLast();
    if (settings.farm.home == QLatin1String("private") ||
        settings.farm.home == QLatin1String("inherit"))
        return {};
    return wrongUsage(
        QStringLiteral("--home takes private or inherit, not '%1'").arg(values.constLast()));
}

Outcome<> readShard(const QStringList& values, CaseRunSettings& settings) {
    const Outcome<Shard> shard = parseShard(values.constLast());
    if (!shard)
        return wrongUsage(QStringLiteral("--shard: ") + shard.error().text);
    settings.farm.shard = *shard;
    return {};
}

Outcome<> readOnlyFailed(const QStringList& values, CaseRunSettings& settings) {
    settings.farm.onlyFailed = values.constLast();
    return {};
}

Outcome<> setFailsOnFlaky(const QStringList&, CaseRunSettings& settings) {
    settings.farm.failsOnFlaky = true;
    return {};
}

}  // namespace

std::vector<Option<CaseRunSettings>> farmOptions() {
    return {
        {"jobs", "N|auto",
         "Runs so many cases at once, each with a display, a session bus and a home of its own; "
         "auto for as many as there are processors.",
         nullptr, readJobs},
        {"retries", "N",
         "Runs a failed case up to N times again; one that passes then is flaky, which is no "
         "failure.",
         nullptr, numberTo("retries", &FarmSettings::retries, 0, mostRuns)},
        {"fail-on-flaky", nullptr, "Exits with 1 when a case was flaky.", nullptr, setFailsOnFlaky},
        {"case-timeout", "SECONDS", "Ends a case that takes longer, as failed.", nullptr,
         numberTo("case-timeout", &FarmSettings::caseTimeout, 1, mostRuns)},
        {"max-failures", "N", "Ends the run when so many cases have failed.", nullptr,
         readMaxFailures},
        {"repeat", "N", "Runs all cases N times.", nullptr,
         numberTo("repeat", &FarmSettings::repeat, 1, mostRuns)},
        {"order", "suite|longest|random[:SEED]",
         "The order of the cases: the suite's, those first that took longest before (with "
         "--history), or a random one, which a seed repeats.",
         nullptr, readOrder},
        {"only-failed", "JOURNAL|DIR",
         "Runs the cases that did not pass in the run of a journal or of a result folder.", nullptr,
         readOnlyFailed},
        {"shard", "I/N", "Runs the part I of N of the cases, by the times in --history.", nullptr,
         readShard},
        {"history", "DIR", "Reads from, and keeps in this folder how long each case takes.",
         nullptr, readHistory},
        {"home", "private|inherit",
         "What applications have for a home: a new one for each case (with --jobs the default), "
         "or the user's.",
         nullptr, readHome},
    };
}

}  // namespace Tamrix
