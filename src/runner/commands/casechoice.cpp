#include "runner/commands/casechoice.h"

#include <QCryptographicHash>

#include "runner/commands/caserun.h"
#include "runner/farm/caseorder.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

QList<SuiteCase> pick(const QList<SuiteCase>& cases, const CaseOrder& order) {
    QList<SuiteCase> picked;
    for (const int index : order)
        picked.append(cases.at(index));
    return picked;
}

Outcome<QList<SuiteCase>> onlyFailed(const QList<SuiteCase>& cases, const QString& journal,
                                     const QString& suite) {
    const Outcome<QStringList> failed = failedCases(journal, suite);
    if (!failed)
        return fail(failed.error());
    QList<SuiteCase> chosen;
    for (const SuiteCase& each : cases) {
        if (failed->contains(each.name))
            chosen.append(each);
    }
    return chosen;
}

/// Tells whether two shards are parts of the same whole: which cases there are, and how they were
/// divided.
QString divisionName(const QList<SuiteCase>& cases, const std::vector<double>& times,
                     const Shard& shard) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const auto add = [&hash](const QString& text) { hash.addData(text.toUtf8() + '\0'); };
    add(QString::number(shard.count));
    for (int index = 0; index < cases.size(); ++index) {
        add(cases.at(index).name);
        add(QString::number(times[static_cast<size_t>(index)], 'f', 3));
    }
    return QString::fromLatin1(hash.result().toHex().left(12));
}

QString orderText(const OrderWish& wish) {
    switch (wish.kind) {
        case OrderWish::Kind::LongestFirst:
            return QStringLiteral("longest first");
        case OrderWish::Kind::Random:
            return QStringLiteral("random:%1").arg(wish.seed);
        case OrderWish::Kind::Suite:
            break;
    }
    return {};
}

}  // namespace

Outcome<CaseChoice> chooseCases(const Suite& suite, const CaseRunSettings& settings,
                                const CaseTimes& history) {
    const FarmSettings& farm = settings.farm;
    CaseChoice choice;
    // 1. By name.
    const Outcome<QList<SuiteCase>> named = selectCases(suite, settings.cases);
    if (!named)
        return fail(named.error());
    choice.cases = *named;
    // 2. What failed before.
    if (!farm.onlyFailed.isEmpty()) {
        const Outcome<QList<SuiteCase>> failed =
            onlyFailed(choice.cases, farm.onlyFailed, suite.name);
        if (!failed)
            return fail(failed.error());
        choice.cases = *failed;
        if (choice.cases.isEmpty())
            tell(QStringLiteral("no case failed in '%1'").arg(farm.onlyFailed));
    }
    // 3. A part.
    if (farm.shard) {
        const std::vector<double> times = history.expected(choice.cases);
        choice.facts.append(
            {QLatin1String(shardFactName),
             QStringLiteral("%1/%2 of %3 cases, division %4")
                 .arg(QString::number(farm.shard->number), QString::number(farm.shard->count),
                      QString::number(choice.cases.size()),
                      divisionName(choice.cases, times, *farm.shard))});
        choice.cases = pick(choice.cases, casesOfShard(choice.cases.size(), times, *farm.shard));
    }
    // 4. Several times.
    const QList<SuiteCase> once = choice.cases;
    for (int round = 1; round < farm.repeat; ++round)
        choice.cases += once;
    // 5. In order: with a history and others that wait, the longest come first.
    OrderWish wish = farm.order.value_or(OrderWish());
    if (!farm.order && farm.jobs > 1)
        wish.kind = OrderWish::Kind::LongestFirst;
    choice.cases =
        pick(choice.cases, orderedCases(choice.cases.size(), history.expected(choice.cases), wish));
    choice.times = history.expected(choice.cases);
    if (const QString text = orderText(wish); !text.isEmpty())
        choice.facts.append({QStringLiteral("Order"), text});
    if (wish.kind == OrderWish::Kind::Random)
        tell(QStringLiteral("the order is random, --order random:%1 repeats it").arg(wish.seed));
    return choice;
}

}  // namespace Tamrix
