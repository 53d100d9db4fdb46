#include "runner/farm/caseorder.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <numeric>
#include <random>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

namespace {

constexpr int mostShards = 100000;

bool hasTimes(const std::vector<double>& times) {
    return !times.empty() && times.front() >= 0;
}

CaseOrder longestFirst(int count, const std::vector<double>& times) {
    CaseOrder order(static_cast<size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    if (hasTimes(times)) {
        std::stable_sort(order.begin(), order.end(), [&](int left, int right) {
            return times[static_cast<size_t>(left)] > times[static_cast<size_t>(right)];
        });
    }
    return order;
}

/// By hand, since std::shuffle gives another order with another standard library.
void shuffle(CaseOrder& order, quint32 seed) {
    std::mt19937 random(seed);
    for (size_t left = order.size(); left > 1; --left)
        std::swap(order[left - 1], order[random() % left]);
}

/// Adds a journal up.
class Tallied : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override { tally.add(entry); }

    RunTally tally;
};

}  // namespace

CaseOrder orderedCases(int count, const std::vector<double>& times, const OrderWish& wish) {
    if (wish.kind == OrderWish::Kind::LongestFirst)
        return longestFirst(count, times);
    CaseOrder order(static_cast<size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    if (wish.kind == OrderWish::Kind::Random)
        shuffle(order, wish.seed);
    return order;
}

Outcome<Shard> parseShard(const QString& text) {
    static const QRegularExpression form(QStringLiteral("\\A([0-9]{1,6})/([0-9]{1,6})\\z"));
    const QRegularExpressionMatch match = form.match(text);
    const Shard shard{match.captured(1).toInt(), match.captured(2).toInt()};
    if (!match.hasMatch() || shard.number < 1 || shard.number > shard.count ||
        shard.count > mostShards) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("a shard is I/N with I from 1 to N, not '%1'").arg(text));
    }
    return shard;
}

CaseOrder casesOfShard(int count, const std::vector<double>& times, const Shard& shard) {
    CaseOrder cases;
    if (!hasTimes(times)) {
        for (int index = shard.number - 1; index < count; index += shard.count)
            cases.push_back(index);
        return cases;
    }
    // The longest ones first, each to the shard that has least so far.
    std::vector<double> loads(static_cast<size_t>(shard.count));
    for (const int index : longestFirst(count, times)) {
        const auto least = std::min_element(loads.begin(), loads.end());
        // Cases of no time at all are spread, too.
        *least += std::max(times[static_cast<size_t>(index)], 0.001);
        if (least - loads.begin() == shard.number - 1)
            cases.push_back(index);
    }
    std::sort(cases.begin(), cases.end());
    return cases;
}

Outcome<QStringList> failedCases(const QString& path, const QString& suite) {
    const QString journal =
        QFileInfo(path).isDir() ? path + QStringLiteral("/journal.jsonl") : path;
    if (!QFileInfo(journal).isFile())
        return fail(FailureKind::NotFound, QStringLiteral("there is no journal '%1'").arg(journal));
    Tallied tallied;
    JournalReader reader(&tallied);
    if (!reader.replay(journal))
        return fail(FailureKind::BadArgument, reader.errorText());
    QStringList names;
    bool isOfSuite = false;
    for (const SuiteTally& each : tallied.tally.suites()) {
        if (each.outside.name != suite)
            continue;
        isOfSuite = true;
        for (const CaseTally& testCase : each.cases) {
            const CaseOutcome outcome = testCase.outcome();
            const bool isGood = testCase.isSuperseded || outcome == CaseOutcome::Passed ||
                                outcome == CaseOutcome::Flaky || outcome == CaseOutcome::Skipped;
            if (!isGood && !names.contains(testCase.name))
                names += testCase.name;
        }
    }
    if (!isOfSuite) {
        return fail(
            FailureKind::BadArgument,
            QStringLiteral("the journal '%1' has no run of the suite '%2'").arg(journal, suite));
    }
    return names;
}

}  // namespace Tamrix
